-- Puts a comment block at the top of the current character's command file
-- (or of its DEF when it has none): what the file is, for whom, and when.
local ToolKit = require("ToolKit")

function main()
  local p = ToolKit.project()
  local doc = p.commands
  if doc.lineCount <= 1 and doc:line(0) == "" then
    doc = p.definitions
  end
  local name = p.name
  if name == "" then
    name = translate("(unnamed)")
  end
  local file = doc.fileName:match("[^/\\]+$") or translate("(new file)")
  local rule = ";" .. string.rep("-", 60) .. "\n"
  local header = rule
      .. "; " .. file .. "\n"
      .. "; " .. string.format(translate("Part of: %s"), name) .. "\n"
      .. "; " .. string.format(translate("Last change: %s"), os.date("%Y-%m-%d")) .. "\n"
      .. rule .. "\n"
  doc:movePosition(TextDocument.Start, TextDocument.MoveAnchor, 1)
  doc:insertText(header)
  print(string.format(translate("Header added to %s"), file))
end
