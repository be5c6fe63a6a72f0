-- Shared helpers of the tool scripts: the project to work on, and a value
-- from the command line or, in the program, from a small dialog.
local ToolKit = {}

-- The current project, or an error that says what is missing.
function ToolKit.project(kind)
  local p = project()
  if p == nil then
    error(translate("No project is open."), 0)
  end
  if kind ~= nil and p.type ~= kind then
    error(translate("This tool works on characters only."), 0)
  end
  return p
end

-- Asks for whole numbers: the words given after "--" on the command line when
-- there are any, otherwise a dialog with one field per label. Returns nil when
-- the dialog is cancelled.
function ToolKit.askNumbers(title, labels)
  if arg ~= nil and #arg > 0 then
    local values = {}
    for i = 1, #labels do
      values[i] = tonumber(arg[i])
      if values[i] == nil then
        error(string.format(translate("Give %d numbers: %s"), #labels, table.concat(labels, ", ")), 0)
      end
    end
    return values
  end
  local dialog = Dialog()
  dialog.text = title
  local grid = GridLayout()
  local edits = {}
  for i, label in ipairs(labels) do
    local l = Label()
    l.text = label
    grid:addWidget(l, i - 1, 0)
    edits[i] = IntEdit()
    edits[i].minimum = 0
    edits[i].maximum = 65535
    grid:addWidget(edits[i], i - 1, 1)
  end
  local buttons = BoxLayout(BoxLayout.Horizontal)
  local ok = Button()
  ok.text = translate("OK")
  local cancel = Button()
  cancel.text = translate("Cancel")
  ok:onClick(function() dialog:accept() end)
  cancel:onClick(function() dialog:reject() end)
  buttons:addWidget(ok)
  buttons:addWidget(cancel)
  local box = BoxLayout(BoxLayout.Vertical)
  box:addLayout(grid)
  box:addLayout(buttons)
  dialog.layout = box
  if dialog:show() ~= Dialog.Accepted then
    return nil
  end
  local values = {}
  for i = 1, #labels do
    values[i] = edits[i].value
  end
  return values
end

return ToolKit
