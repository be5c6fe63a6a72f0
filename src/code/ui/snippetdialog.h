#pragma once

#include <QString>

class QSnippetManager;
class QWidget;

// The finished code of snippet `name`: with fields, a dialog asks the user
// for each (through QAskUser) and the answers go into the code. Empty on
// cancel, for a missing or broken snippet, and for a snippet without code.
QString askSnippetCode(const QSnippetManager &snippets, const QString &name, QWidget *parent);
