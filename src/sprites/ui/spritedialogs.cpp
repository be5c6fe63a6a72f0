#include "spritedialogs.h"

#include "project/qproject.h"
#include "shell/qaskuser.h"
#include "sprites/qpalettefile.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

QSpinBox *spin(QWidget *parent, const char *name, int minimum, int maximum, int value = 0)
{
    auto *s = new QSpinBox(parent);
    s->setObjectName(QString::fromLatin1(name));
    s->setRange(minimum, maximum);
    s->setValue(value);
    return s;
}

QRadioButton *radio(QWidget *parent, const char *name, const QString &text)
{
    auto *r = new QRadioButton(text, parent);
    r->setObjectName(QString::fromLatin1(name));
    return r;
}

} // namespace

// --- AddSpr ------------------------------------------------------------------

AddSpr::AddSpr(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("AddSpr"));
    setWindowTitle(tr("Add sprites..."));
    auto *layout = new QVBoxLayout(this);

    auto *numbers = new QFormLayout;
    m_group = spin(this, "group", 0, 65535);
    m_number = spin(this, "index", 0, 65535);
    numbers->addRow(tr("Group:"), m_group);
    numbers->addRow(tr("Index:"), m_number);
    layout->addLayout(numbers);
    auto *steps = new QHBoxLayout;
    QRadioButton *one = radio(this, "OneInc", tr("1,2,3,5,..."));
    m_ten = radio(this, "TenInc", tr("10,20,30,..."));
    one->setChecked(true);
    steps->addWidget(one);
    steps->addWidget(m_ten);
    layout->addLayout(steps);

    auto *axisBox = new QGroupBox(tr("Axis:"), this);
    auto *grid = new QGridLayout(axisBox);
    m_axis = new QButtonGroup(this);
    const char *names[] = {"AxisNO", "AxisN", "AxisNL", "AxisO", "AxisC", "AxisL", "AxisSO", "AxisS", "AxisSL"};
    for (int i = 0; i < 9; ++i) {
        QRadioButton *r = radio(axisBox, names[i], QString());
        m_axis->addButton(r, i);
        grid->addWidget(r, i / 3, i % 3);
    }
    QRadioButton *custom = radio(axisBox, "AxisXY", tr("X, Y:"));
    m_axis->addButton(custom, AxisXY);
    m_x = spin(axisBox, "AxisX", -32768, 32767);
    m_y = spin(axisBox, "AxisY", -32768, 32767);
    grid->addWidget(custom, 3, 0);
    grid->addWidget(m_x, 3, 1);
    grid->addWidget(m_y, 3, 2);
    m_axis->button(AxisS)->setChecked(true);
    layout->addWidget(axisBox);

    m_reversed = new QCheckBox(tr("Reversed"), this);
    m_reversed->setObjectName(QStringLiteral("reversed"));
    layout->addWidget(m_reversed);

    auto *palette = new QFormLayout;
    m_palette = new QComboBox(this);
    m_palette->setObjectName(QStringLiteral("paletteMode"));
    m_palette->addItems({tr("Image's palette, if not already added"), tr("Force the specified palette (adapt the image)"),
                         tr("Exchange with the specified palette")});
    palette->addRow(tr("Palette:"), m_palette);
    auto *pal = new QHBoxLayout;
    m_pGroup = spin(this, "pGrp", 0, 65535);
    m_pNumber = spin(this, "pIdx", 0, 65535);
    pal->addWidget(m_pGroup);
    pal->addWidget(m_pNumber);
    palette->addRow(QString(), pal);
    m_crop = new QComboBox(this);
    m_crop->setObjectName(QStringLiteral("cropImg"));
    m_crop->addItems({tr("Don't crop the image"), tr("Crop the image (before axis)"), tr("Crop the image (after axis)")});
    palette->addRow(QString(), m_crop);
    layout->addLayout(palette);
    layout->addWidget(QAskUser::okCancelButtons(this));
}

void AddSpr::setDefaults(int group, int number, int x, int y, bool blankAxis, int paletteGroup, int paletteNumber)
{
    m_group->setValue(group);
    m_number->setValue(number);
    m_x->setValue(x);
    m_y->setValue(y);
    m_pGroup->setValue(paletteGroup);
    m_pNumber->setValue(paletteNumber);
    m_axis->button(blankAxis ? AxisS : AxisXY)->setChecked(true);
}

int AddSpr::group() const { return m_group->value(); }
int AddSpr::number() const { return m_number->value(); }
int AddSpr::step() const { return m_ten->isChecked() ? 10 : 1; }
int AddSpr::axisPreset() const { return m_axis->checkedId() < 0 ? AxisS : m_axis->checkedId(); }
QPoint AddSpr::explicitAxis() const { return QPoint(m_x->value(), m_y->value()); }
bool AddSpr::reversed() const { return m_reversed->isChecked(); }
int AddSpr::paletteMode() const { return m_palette->currentIndex(); }
int AddSpr::paletteGroup() const { return m_pGroup->value(); }
int AddSpr::paletteNumber() const { return m_pNumber->value(); }
int AddSpr::cropMode() const { return m_crop->currentIndex(); }

QPoint AddSpr::axisFor(int preset, int w, int h, const QPoint &explicitAxis)
{
    switch (preset) {
    case AxisNO: return QPoint(0, 0);
    case AxisN: return QPoint(w / 2, 0);
    case AxisNL: return QPoint(w, 0);
    case AxisO: return QPoint(0, h / 2);
    case AxisC: return QPoint(w / 2, h / 2);
    case AxisL: return QPoint(w, h / 2);
    case AxisSO: return QPoint(0, h);
    case AxisS: return QPoint(w / 2, h);
    case AxisSL: return QPoint(w, h);
    default: return explicitAxis;
    }
}

// --- GroupDlg ----------------------------------------------------------------

GroupDlg::GroupDlg(bool rename, int group, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(rename ? QStringLiteral("RenGrp") : QStringLiteral("DelGrp"));
    setWindowTitle(rename ? tr("Rename group") : tr("Delete group"));
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    m_group = spin(this, "group", 0, 65535, group);
    form->addRow(tr("Group:"), m_group);
    if (rename) {
        m_newGroup = spin(this, "newGroup", 0, 65535, group);
        form->addRow(tr("New group:"), m_newGroup);
    }
    layout->addLayout(form);
    m_whole = radio(this, "whole", tr("Entire group"));
    QRadioButton *interval = radio(this, "interval", tr("Interval"));
    m_whole->setChecked(true);
    layout->addWidget(m_whole);
    layout->addWidget(interval);
    auto *range = new QFormLayout;
    m_first = spin(this, "start", 0, 65535);
    m_last = spin(this, "end", 0, 65535);
    range->addRow(tr("Start:"), m_first);
    range->addRow(tr("End:"), m_last);
    layout->addLayout(range);
    layout->addWidget(QAskUser::okCancelButtons(this));
}

int GroupDlg::group() const { return m_group->value(); }
int GroupDlg::newGroup() const { return m_newGroup ? m_newGroup->value() : m_group->value(); }
bool GroupDlg::whole() const { return m_whole->isChecked(); }
int GroupDlg::first() const { return m_first->value(); }
int GroupDlg::last() const { return m_last->value(); }

// --- CloneSpr ----------------------------------------------------------------

CloneSpr::CloneSpr(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("CloneSpr"));
    setWindowTitle(tr("Duplicate sprite"));
    auto *layout = new QVBoxLayout(this);
    QRadioButton *link = radio(this, "DuplLink", tr("Link the image, don't copy it"));
    m_copy = radio(this, "DuplImg", tr("Copy the image"));
    link->setChecked(true);
    layout->addWidget(link);
    layout->addWidget(m_copy);
    layout->addWidget(QAskUser::okCancelButtons(this));
}

bool CloneSpr::copyImage() const { return m_copy->isChecked(); }

// --- SaveItem ----------------------------------------------------------------

SaveItem::SaveItem(int count, int current, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("SaveItem"));
    setWindowTitle(tr("Save images"));
    auto *layout = new QVBoxLayout(this);
    m_which = new QButtonGroup(this);
    const char *names[] = {"current", "group", "interval"};
    const QString texts[] = {tr("Current"), tr("Group"), tr("Interval")};
    for (int i = 0; i < 3; ++i) {
        QRadioButton *r = radio(this, names[i], texts[i]);
        m_which->addButton(r, i);
        layout->addWidget(r);
    }
    m_which->button(Current)->setChecked(true);
    auto *range = new QFormLayout;
    m_first = spin(this, "start", 1, qMax(1, count), qMax(1, current + 1));
    m_last = spin(this, "end", 1, qMax(1, count), qMax(1, count));
    range->addRow(tr("Start:"), m_first);
    range->addRow(tr("End:"), m_last);
    layout->addLayout(range);
    layout->addWidget(QAskUser::okCancelButtons(this));
}

int SaveItem::which() const { return m_which->checkedId(); }
int SaveItem::first() const { return m_first->value(); }
int SaveItem::last() const { return m_last->value(); }

AppPalDlg::AppPalDlg(const QList<int> &groups, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("AppPalDlg"));
    setWindowTitle(tr("Apply to the groups"));
    auto *layout = new QHBoxLayout(this);
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("groups"));
    for (int g : groups) {
        auto *item = new QListWidgetItem(QString::number(g), m_list);
        item->setData(Qt::UserRole, g);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Unchecked);
    }
    layout->addWidget(m_list);
    auto *buttons = new QVBoxLayout;
    const struct
    {
        const char *name;
        QString text;
    } names[] = {{"selectAll", tr("Select all")}, {"clearSelection", tr("Clear selection")}, {"inverse", tr("Inverse")},
                 {"apply", tr("Apply")}, {"close", tr("Close")}};
    for (int i = 0; i < 5; ++i) {
        auto *b = new QPushButton(names[i].text, this);
        b->setObjectName(QString::fromLatin1(names[i].name));
        b->setAutoDefault(false);
        buttons->addWidget(b);
        if (i < 3)
            connect(b, &QPushButton::clicked, this, [this, i] { setAll(i); });
        else if (i == 3)
            connect(b, &QPushButton::clicked, this, [this] { emit apply(checkedGroups()); });
        else
            connect(b, &QPushButton::clicked, this, &QDialog::accept);
        if (i == 2)
            buttons->addSpacing(12);
    }
    buttons->addStretch();
    layout->addLayout(buttons);
}

QList<int> AppPalDlg::checkedGroups() const
{
    QList<int> out;
    for (int i = 0; i < m_list->count(); ++i)
        if (m_list->item(i)->checkState() == Qt::Checked)
            out << m_list->item(i)->data(Qt::UserRole).toInt();
    return out;
}

void AppPalDlg::setAll(int mode)
{
    for (int i = 0; i < m_list->count(); ++i) {
        QListWidgetItem *item = m_list->item(i);
        const bool on = mode == 0 || (mode == 2 && item->checkState() != Qt::Checked);
        item->setCheckState(on ? Qt::Checked : Qt::Unchecked);
    }
}

// --- AddSom -------------------------------------------------------------------

AddSom::AddSom(const QString &title, int group, int number, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("AddSom"));
    setWindowTitle(title);
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    // Palette groups and numbers are signed in the file.
    m_group = spin(this, "group", -32768, 32767, group);
    m_number = spin(this, "number", -32768, 32767, number);
    form->addRow(tr("Group:"), m_group);
    form->addRow(tr("Index:"), m_number);
    layout->addLayout(form);
    layout->addWidget(QAskUser::okCancelButtons(this));
}

int AddSom::group() const
{
    return m_group->value();
}

int AddSom::number() const
{
    return m_number->value();
}

QString projectFolder(const QProject *project, const char *key)
{
    return project ? project->path(QString::fromLatin1(key)) : QString();
}

void rememberFolder(QProject *project, const char *key, const QString &file)
{
    if (project)
        project->setPath(QString::fromLatin1(key), QFileInfo(file).absolutePath());
}

bool openPaletteFile(QWidget *parent, const QString &title, QProject *project, QRGBPal *colors)
{
    const QString file =
        QAskUser::openFileName(parent, title, projectFolder(project, "pal_path"), QPaletteFile::openFilter());
    if (file.isEmpty())
        return false;
    rememberFolder(project, "pal_path", file);
    QString why;
    if (QPaletteFile::load(file, colors, &why))
        return true;
    QAskUser::critical(parent, title,
                       QObject::tr("%1 could not be read:\n%2").arg(QDir::toNativeSeparators(file), why));
    return false;
}
