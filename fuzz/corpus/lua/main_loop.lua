function main()
  local t = {}
  for i = 1, 1e9 do t[i % 100] = tostring(i) end
end
