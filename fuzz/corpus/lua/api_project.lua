local p = project(0)
print(projectCount(), p.type, p.version, p.localCoord.x, p.statesCount, p.name)
p.type = Project.Stage
local s = p:states(0)
s:insertText("; x\n")
local n = p:addState()
n.text = "[Statedef 1]"
print(translate("text"), tostring(p), p == project())
