#pragma once

#include <QAbstractTableModel>
#include <QIcon>
#include <QKeySequence>
#include <QList>
#include <QString>

#include <functional>

#include "shell/qactionlist.h"
#include "shell/qtranslationunit.h"

class QAction;
class QAction2;

// Makes, owns and finds every command of the program by its key, and lets one
// key combination mean different things in different editors: the shortcut
// lives on a carrier action shared by all commands with those keys, and the
// carrier runs the command that fits the current editor.
//
// It is also the table model of the shortcut list ("Function" / "Keys").
// It never talks to the user itself: a refused shortcut is announced through
// conflict(), and new carriers through carrierCreated() so that the window can
// take them in (a shortcut only fires for actions added to a widget).
class QActionManager : public QAbstractTableModel
{
    Q_OBJECT

public:
    static constexpr int NoEditor = 8;
    using IconProvider = std::function<QIcon(const QString &key)>;

    explicit QActionManager(QObject *parent = nullptr);
    ~QActionManager() override;

    // scopes: editor ids ended by -1 ({7, -1} for a global command). With a
    // receiver and a slot (SLOT()), toggled(bool) is connected for a checkable
    // action and triggered() otherwise; with an enabling signal (SIGNAL(bool))
    // of the receiver, that signal drives setEnabled.
    QAction2 *addAction(const QList<int> &scopes, const QString &key, int captionId, bool checkable = false,
                        QObject *receiver = nullptr, const char *slot = nullptr,
                        const char *enablingSignal = nullptr);
    QAction2 *action(const QString &key) const;
    const QList<QAction2 *> &actions() const { return m_actions; }
    const QList<QAction *> &carriers() const { return m_carriers; }

    // Gives action the keys (empty keys remove its shortcut). Refuses, with
    // conflict() and no change, when another action with the same keys works
    // in a scope this one works in.
    bool setShortcut(QAction2 *action, const QKeySequence &keys);

    // The current editor: shortcuts resolve for it and the side list shows its actions.
    void setScope(int editorId);
    int scope() const { return m_scope; }

    // Rewrites the texts of every action, e.g. after a change of language.
    void retranslate();
    void retranslate(QAction2 *action);

    // Shortcut file: type "ORVShortcutML", root "shortcuts". A missing file is
    // no error (returns false, nothing changes).
    bool load(const QString &fileName);
    bool save(const QString &fileName) const;

    QTranslationUnit &translation() { return m_translation; }
    const QTranslationUnit &translation() const { return m_translation; }
    QActionList &list() { return m_list; }

    void setIconProvider(IconProvider provider) { m_iconProvider = std::move(provider); }
    QIcon icon(const QString &key) const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

signals:
    void carrierCreated(QAction *carrier);
    void conflict(QAction2 *action, const QKeySequence &keys);

private slots:
    void shortcutTriggered();

private:
    static int useCount(const QAction *carrier);
    static void setUseCount(QAction *carrier, int count);
    void releaseCarrier(QAction2 *action);

    QTranslationUnit m_translation;
    QList<QAction2 *> m_actions;
    QList<QAction *> m_carriers;
    int m_scope = NoEditor;
    QActionList m_list;
    IconProvider m_iconProvider;
};
