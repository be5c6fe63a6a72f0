-- Moves every sprite of one group to another group number, keeping their
-- numbers. From the command line: -- FROM TO [OUT.sff] writes the result to
-- OUT.sff (in the version the file had).
local ToolKit = require("ToolKit")

function main()
  local p = ToolKit.project()
  local sprites = p.sprites
  local values = ToolKit.askNumbers(translate("Renumber a group"), {translate("Group"), translate("New group")})
  if values == nil then
    return
  end
  local from, to = values[1], values[2]
  local moved = 0
  for i = 0, sprites:count() - 1 do
    if sprites:group(i) == from then
      if sprites:find(to, sprites:number(i)) >= 0 then
        error(string.format(translate("Sprite %d,%d exists already"), to, sprites:number(i)), 0)
      end
      moved = moved + 1
    end
  end
  sprites:renameGroup(from, to)
  print(string.format(translate("%d sprites moved from group %d to group %d"), moved, from, to))
  if arg ~= nil and arg[3] ~= nil then
    if not sprites:toFile(arg[3], p.type == Project.Character, sprites.version, true, true) then
      error(string.format(translate("%s could not be written"), arg[3]), 0)
    end
    print(string.format(translate("Written to %s"), arg[3]))
  end
end
