-- A storyboard (intro or ending) with one scene that fades in, shows
-- animation 0 and fades out.

local definitions = [[
; Definitions of the storyboard
[Info]
localcoord = 320,240

[SceneDef]
spr = storyboard.sff
startscene = 0

[Scene 0]
fadein.time = 30
fadein.col = 0,0,0
fadeout.time = 30
fadeout.col = 0,0,0
clearcolor = 0,0,0
layerall.pos = 160,120
layer0.anim = 0
layer0.offset = 0,0
layer0.starttime = 0
end.time = 300

[Begin Action 0]
-1,0, 0,0, -1
]]

function template(p)
  p.definitions.text = definitions
  return true
end
