local sp = project().sprites
sp:add() sp:insert(0) sp:move(0, 1) sp:crop(0)
print(sp:count(), sp:group(0), sp:number(0), sp:find(0, 0), sp.version, sp.isModified)
sp.index = 1
sp.version = Sprites.Version_200
sp:renameGroup(0, 5)
sp:remove(0)
sp:clear()
local a = project().animations
print(a:count())
