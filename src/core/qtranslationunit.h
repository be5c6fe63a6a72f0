#pragma once

#include <QObject>
#include <QString>

class QAction;
class QMenu;

// Every caption of an action or menu, by a stable number, so that presets,
// shortcuts and translators all speak of the same text. Tool tips and
// what's-this texts are looked up by the same number; where no separate text
// exists the caption serves.
class QTranslationUnit : public QObject
{
    Q_OBJECT

public:
    static constexpr int Count = 326;

    explicit QTranslationUnit(QObject *parent = nullptr);

    QString text(int id) const;
    QString toolTip(int id) const;
    QString whatsThis(int id) const;

    // Text, tool tip, status tip (the tool tip) and what's-this of an action.
    void retranslate(QAction *action, int id) const;
    // Title, tool tip and status tip of a menu.
    void retranslateMenu(QObject *menu, int id) const;
};
