local d = project().definitions
d:movePosition(TextDocument.End, TextDocument.KeepAnchor, 3)
d:insertText("[Extra]\nkey = 1\n")
d.position = -5
d:select(TextDocument.LineUnderCursor)
print(d.selectedText, d:sectionExists("extra"), d:findValue("Info", "name"), d.lineNumber, d.columnNumber)
d.text = d.text .. "\n"
