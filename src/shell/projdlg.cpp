#include "shell/projdlg.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QListWidget>
#include <QMap>
#include <QTabWidget>
#include <QVBoxLayout>

ProjDlg::ProjDlg(const QStringList &templates, const QString &iconFolder, QWidget *parent)
    : QDialog(parent)
    , m_tabs(new QTabWidget(this))
{
    setWindowTitle(tr("Project template"));
    setObjectName(QStringLiteral("ProjDlg"));
    resize(460, 320);

    QMap<QString, QStringList> byGroup;
    for (const QString &name : templates) {
        const qsizetype slash = name.indexOf(QLatin1Char('/'));
        if (slash <= 0 || slash == name.size() - 1)
            continue; // not "<group>/<name>"
        byGroup[name.left(slash)].append(name.mid(slash + 1));
    }

    for (auto it = byGroup.cbegin(); it != byGroup.cend(); ++it) {
        auto *list = new QListWidget;
        list->setViewMode(QListView::IconMode);
        list->setIconSize(QSize(48, 48));
        list->setGridSize(QSize(110, 90));
        list->setResizeMode(QListView::Adjust);
        list->setMovement(QListView::Static);
        list->setWordWrap(true);
        list->setWhatsThis(it.key());
        for (const QString &name : it.value()) {
            const QString full = it.key() + QLatin1Char('/') + name;
            const QString iconFile = iconFolder + QLatin1Char('/') + full + QStringLiteral(".png");
            auto *item = new QListWidgetItem(QIcon(iconFile), name, list);
            item->setData(Qt::WhatsThisRole, full);
            item->setToolTip(full);
        }
        connect(list, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
        m_tabs->addTab(list, it.key());
        m_tabs->widget(m_tabs->count() - 1)->setWhatsThis(it.key());
    }

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    layout->addWidget(buttons);
}

QString ProjDlg::chosenTemplate() const
{
    auto *list = qobject_cast<QListWidget *>(m_tabs->currentWidget());
    if (!list)
        return QString();
    const QList<QListWidgetItem *> selected = list->selectedItems();
    return selected.isEmpty() ? QString() : selected.first()->data(Qt::WhatsThisRole).toString();
}

bool ProjDlg::selectTemplate(const QString &name)
{
    for (int t = 0; t < m_tabs->count(); ++t) {
        auto *list = qobject_cast<QListWidget *>(m_tabs->widget(t));
        for (int i = 0; list && i < list->count(); ++i) {
            if (list->item(i)->data(Qt::WhatsThisRole).toString() == name) {
                m_tabs->setCurrentIndex(t);
                list->setCurrentItem(list->item(i));
                list->item(i)->setSelected(true);
                return true;
            }
        }
    }
    return false;
}

QStringList ProjDlg::findTemplates(const QString &folder)
{
    QStringList names;
    const QDir root(folder);
    for (const QString &group : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QDir dir(root.filePath(group));
        for (const QFileInfo &fi : dir.entryInfoList({QStringLiteral("*.lua")}, QDir::Files, QDir::Name))
            names.append(group + QLatin1Char('/') + fi.completeBaseName());
    }
    return names;
}
