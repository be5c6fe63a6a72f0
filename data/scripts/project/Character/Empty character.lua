-- A character with every file and section the engine needs to load it: the
-- definitions, a command file with the hold commands the common states use,
-- and a constants file. Sprites and animations are added in their editors.

local definitions = [[
; Definitions of the character
[Info]
name = "New character"
displayname = "New character"
versiondate = 01,01,2025
mugenversion = 1.1
author = ""
localcoord = 320,240
pal.defaults = 1

[Files]
cmd = character.cmd
cns = character.cns
st = character.cns
stcommon = common1.cns
sprite = character.sff
anim = character.air

[Arcade]
]]

local commands = [[
; Commands of the character
[Remap]
x = x
y = y
z = z
a = a
b = b
c = c
s = s

[Defaults]
command.time = 15
command.buffer.time = 1

; Held directions, used by the common states
[Command]
name = "holdfwd"
command = /$F
time = 1

[Command]
name = "holdback"
command = /$B
time = 1

[Command]
name = "holdup"
command = /$U
time = 1

[Command]
name = "holddown"
command = /$D
time = 1

[Statedef -1]
]]

local constants = [[
; Constants and states of the character
[Data]
life = 1000
attack = 100
defence = 100
fall.defence_up = 50
liedown.time = 60
airjuggle = 15
sparkno = 2
guard.sparkno = 40
KO.echo = 0
volume = 0
IntPersistIndex = 60
FloatPersistIndex = 40

[Size]
xscale = 1
yscale = 1
ground.back = 15
ground.front = 16
air.back = 12
air.front = 12
height = 60
attack.dist = 160
proj.attack.dist = 90
proj.doscale = 0
head.pos = -5, -90
mid.pos = -5, -60
shadowoffset = 0
draw.offset = 0,0

[Velocity]
walk.fwd = 2.4
walk.back = -2.2
run.fwd = 4.6, 0
run.back = -4.5,-3.8
jump.neu = 0,-8.4
jump.back = -2.55
jump.fwd = 2.5
runjump.back = -2.55,-8.1
runjump.fwd = 4,-8.1
airjump.neu = 0,-8.1
airjump.back = -2.55
airjump.fwd = 2.5

[Movement]
airjump.num = 1
airjump.height = 35
yaccel = .44
stand.friction = .85
crouch.friction = .82
]]

function template(p)
  p.definitions.text = definitions
  p.commands.text = commands
  p:addState().text = constants
  return true
end
