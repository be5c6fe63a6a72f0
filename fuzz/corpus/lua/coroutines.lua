local co = coroutine.wrap(function() while true do coroutine.yield(project().definitions.position) end end)
for i = 1, 10 do print(co()) end
setmetatable(_G, {__index = function(t, k) return k end})
print(undefinedName, getmetatable(project()))
