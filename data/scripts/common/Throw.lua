-- Writes the states of a throw: the grab (a HitDef that only connects with a
-- standing or crouching opponent at close range), the throw itself with the
-- opponent bound to the thrower, and the opponent's flight.
--
-- makeThrow(v) takes a table with the fields
--   StateDef     first state number; the throw uses StateDef to StateDef + 1,
--                the opponent StateDef + 10 and StateDef + 11
--   P1AnimStart  the thrower's animation while reaching out
--   P1Anim       the thrower's animation while throwing
--   P2Anim       the opponent's animation, taken from the thrower's file
--   XVelocity    the opponent's speed when let go
--   YVelocity
--   BindCount    ticks the opponent stays bound before being let go
--   SprPriority  the thrower's sprite priority while throwing
-- and returns the code as a string.

local function num(v)
  v = tonumber(v) or 0
  if v == math.floor(v) and math.abs(v) < 1e9 then
    return string.format("%d", v)
  end
  return string.format("%.2f", v)
end

function makeThrow(v)
  local s = tonumber(v.StateDef) or 800
  local t = {
    StateDef = num(s), Throw = num(s + 1), Held = num(s + 10), Flight = num(s + 11),
    P1AnimStart = num(v.P1AnimStart), P1Anim = num(v.P1Anim), P2Anim = num(v.P2Anim),
    XVelocity = num(v.XVelocity), YVelocity = num(v.YVelocity),
    BindCount = num(math.max(1, tonumber(v.BindCount) or 1)), SprPriority = num(v.SprPriority),
  }
  local code = [[
; Throw: reaching out
[Statedef $StateDef]
type = S
movetype = A
physics = S
juggle = 0
velset = 0,0
ctrl = 0
anim = $P1AnimStart
poweradd = 0

[State $StateDef, Grab]
type = HitDef
trigger1 = AnimElem = 1
attr = S, NT
hitflag = M-
priority = 1, Miss
sparkno = -1
p1facing = 1
p2facing = 1
p1stateno = $Throw
p2stateno = $Held
guard.dist = 0
fall = 1

[State $StateDef, Missed]
type = ChangeState
trigger1 = AnimTime = 0
value = 0
ctrl = 1

; Throw: the opponent is held, then let go
[Statedef $Throw]
type = S
movetype = A
physics = N
anim = $P1Anim
sprpriority = $SprPriority
poweradd = 60

[State $Throw, Hold]
type = TargetBind
trigger1 = Time < $BindCount
pos = 30, 0

[State $Throw, Let go]
type = TargetState
trigger1 = Time = $BindCount
value = $Flight

[State $Throw, Velocity]
type = TargetVelSet
trigger1 = Time = $BindCount
x = $XVelocity
y = $YVelocity

[State $Throw, End]
type = ChangeState
trigger1 = AnimTime = 0
value = 0
ctrl = 1

; Opponent: held
[Statedef $Held]
type = A
movetype = H
physics = N
velset = 0,0

[State $Held, Look]
type = ChangeAnim2
trigger1 = Time = 0
value = $P2Anim

; Opponent: thrown
[Statedef $Flight]
type = A
movetype = H
physics = N

[State $Flight, Gravity]
type = VelAdd
trigger1 = 1
y = 0.45

[State $Flight, Land]
type = SelfState
trigger1 = Vel Y > 0
trigger1 = Pos Y >= 0
value = 5100
]]
  return (code:gsub("%$(%w+)", t))
end
