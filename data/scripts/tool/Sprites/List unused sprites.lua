-- Lists the sprites of the current character that no animation shows.
-- Portraits and other sprites the engine shows by itself (group 9000) and the
-- sprites of states that draw no animation are not counted as unused.
local ToolKit = require("ToolKit")

function main()
  local p = ToolKit.project(Project.Character)
  local sprites, anims = p.sprites, p.animations
  local used = {}
  for a = 0, anims:count() - 1 do
    for f = 0, anims:frameCount(a) - 1 do
      local g, n = anims:frame(a, f)
      used[g .. "," .. n] = true
    end
  end
  local unused = 0
  for i = 0, sprites:count() - 1 do
    local g, n = sprites:group(i), sprites:number(i)
    if g ~= 9000 and not used[g .. "," .. n] then
      print(string.format(translate("Unused sprite %d,%d"), g, n))
      unused = unused + 1
    end
  end
  print(string.format(translate("%d of %d sprites are unused"), unused, sprites:count()))
end
