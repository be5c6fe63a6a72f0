-- Reports the animation frames of the current character whose sprite is not
-- in its sprite file. Frames with group -1 show nothing on purpose.
local ToolKit = require("ToolKit")

function main()
  local p = ToolKit.project(Project.Character)
  local sprites, anims = p.sprites, p.animations
  local missing, actions = 0, 0
  for a = 0, anims:count() - 1 do
    local before = missing
    for f = 0, anims:frameCount(a) - 1 do
      local g, n = anims:frame(a, f)
      if g >= 0 and sprites:find(g, n) < 0 then
        print(string.format(translate("Action %d, frame %d: sprite %d,%d is missing"), anims:number(a), f + 1, g, n))
        missing = missing + 1
      end
    end
    if missing > before then
      actions = actions + 1
    end
  end
  print(string.format(translate("%d frames in %d actions show a missing sprite"), missing, actions))
end
