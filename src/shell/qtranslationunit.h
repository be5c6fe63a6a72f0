#pragma once

#include <QObject>
#include <QString>

class QAction;

// Every caption, tool tip and what's-this text that actions, menus and panel
// controls show, looked up by one id. The texts pass through tr() so that
// translators see them once, here, instead of scattered over the editors.
class QTranslationUnit : public QObject
{
    Q_OBJECT

public:
    // Ids run from 0 to Count - 1; anything else reads as an empty text.
    static constexpr int Count = 334;

    explicit QTranslationUnit(QObject *parent = nullptr);

    QString text(int id) const;
    // Field labels ("Group:") have no tool tip: the result is empty for them.
    QString toolTip(int id) const;
    // Falls back to the tool tip where no longer explanation exists.
    QString whatsThis(int id) const;

    // Sets text, tool tip, status tip (same as the tool tip) and what's-this.
    void retranslate(QAction *action, int id) const;
    // The same with " (keys)" appended to the caption, for actions that carry a shortcut.
    void retranslate(QAction *action, int id, const QString &shortcutText) const;
    // Title, tool tip and status tip of a menu. Reached through properties, so
    // this table needs no widget library.
    void retranslateMenu(QObject *menu, int id) const;
};
