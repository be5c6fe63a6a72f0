-- A stage with the sections the engine reads and one background layer that
-- shows sprite 0,0 of the stage's sprite file.

local definitions = [[
; Definitions of the stage
[Info]
name = "New stage"
displayname = "New stage"
versiondate = 01,01,2025
mugenversion = 1.1
author = ""

[Camera]
startx = 0
starty = 0
boundleft = -150
boundright = 150
boundhigh = -25
boundlow = 0
verticalfollow = .2
floortension = 0
tension = 50

[PlayerInfo]
p1startx = -70
p1starty = 0
p1facing = 1
p2startx = 70
p2starty = 0
p2facing = -1
leftbound = -1000
rightbound = 1000

[Bound]
screenleft = 15
screenright = 15

[StageInfo]
zoffset = 200
autoturn = 1
resetBG = 1
localcoord = 320,240
xscale = 1
yscale = 1

[Shadow]
intensity = 96
color = 0,0,0
yscale = .3

[Reflection]
intensity = 0

[Music]
bgmusic =
bgmvolume = 100

[BGdef]
spr = stage.sff
debugbg = 0

[BG Back]
type = normal
spriteno = 0,0
layerno = 0
start = 0,0
delta = 1,1
mask = 0
tile = 1,0
]]

function template(p)
  p.definitions.text = definitions
  return true
end
