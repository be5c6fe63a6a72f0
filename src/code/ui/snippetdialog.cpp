#include "snippetdialog.h"

#include "scripting/qsnippetmanager.h"
#include "shell/qaskuser.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

#include <cfloat>
#include <climits>

QString askSnippetCode(const QSnippetManager &snippets, const QString &name, QWidget *parent)
{
    const QSnippetManager::Snippet snippet = snippets.snippet(name);
    if (!snippet.valid)
        return QString();
    if (snippet.fields.isEmpty())
        return snippet.code;

    QDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("SnippetFieldsDlg"));
    dialog.setWindowTitle(name);
    auto *grid = new QGridLayout(&dialog);
    QList<QWidget *> editors;
    QList<int> rows; // next free row of each grid column pair
    for (const QSnippetManager::Field &f : snippet.fields) {
        // Each field column takes two grid columns: label and editor.
        const int column = qMin(f.column, 15);
        while (rows.size() <= column)
            rows.append(0);
        const int row = rows[column]++;
        QWidget *editor = nullptr;
        if (f.type == QLatin1String("string")) {
            editor = new QLineEdit(&dialog);
        } else if (f.type == QLatin1String("float")) {
            auto *spin = new QDoubleSpinBox(&dialog);
            spin->setRange(-DBL_MAX, DBL_MAX);
            spin->setDecimals(3);
            editor = spin;
        } else if (f.type == QLatin1String("items")) {
            auto *combo = new QComboBox(&dialog);
            for (const auto &item : f.items)
                combo->addItem(item.second, item.first);
            editor = combo;
        } else {
            auto *spin = new QSpinBox(&dialog);
            spin->setRange(INT_MIN, INT_MAX);
            editor = spin;
        }
        editor->setObjectName(f.name);
        auto *label = new QLabel(f.title, &dialog);
        label->setBuddy(editor);
        grid->addWidget(label, row, column * 2);
        grid->addWidget(editor, row, column * 2 + 1);
        editors.append(editor);
    }
    int bottom = 0;
    for (int r : std::as_const(rows))
        bottom = qMax(bottom, r);
    grid->addWidget(QAskUser::okCancelButtons(&dialog), bottom, 0, 1, -1);
    if (QAskUser::exec(&dialog) != QDialog::Accepted)
        return QString();

    QStringList answers;
    for (QWidget *editor : std::as_const(editors)) {
        if (auto *line = qobject_cast<QLineEdit *>(editor))
            answers << line->text();
        else if (auto *real = qobject_cast<QDoubleSpinBox *>(editor))
            answers << QString::number(real->value());
        else if (auto *combo = qobject_cast<QComboBox *>(editor))
            answers << combo->currentData().toString();
        else if (auto *spin = qobject_cast<QSpinBox *>(editor))
            answers << QString::number(spin->value());
    }
    return QSnippetManager::expand(snippet, answers);
}
