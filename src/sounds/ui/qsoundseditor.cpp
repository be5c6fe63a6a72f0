#include "qsoundseditor.h"

#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/qappobjects.h"
#include "shell/qaskuser.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterfacecontrolaction.h"
#include "shell/qinterfacecontrolwidget.h"
#include "shell/qprogress.h"

#include <QActionGroup>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QListView>
#include <QListWidget>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

const QString WavFilter = QStringLiteral("WAV sounds (*.wav);;All files (*)");

// A small modal form: spin boxes and a choice among radio buttons, each
// findable by its object name, so that a scripted answer can fill it in.
class FormDialog : public QDialog
{
public:
    FormDialog(const QString &name, const QString &title, QWidget *parent)
        : QDialog(parent)
        , m_form(new QFormLayout)
    {
        setObjectName(name);
        setWindowTitle(title);
        auto *layout = new QVBoxLayout(this);
        layout->addLayout(m_form);
        m_choices = new QVBoxLayout;
        layout->addLayout(m_choices);
        auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        layout->addWidget(buttons);
    }
    QSpinBox *addNumber(const QString &name, const QString &label, int value)
    {
        auto *spin = new QSpinBox;
        spin->setObjectName(name);
        spin->setRange(0, 65535);
        spin->setValue(value);
        m_form->addRow(label, spin);
        return spin;
    }
    QRadioButton *addChoice(const QString &name, const QString &label, bool checked)
    {
        auto *radio = new QRadioButton(label);
        radio->setObjectName(name);
        radio->setChecked(checked);
        m_choices->addWidget(radio);
        return radio;
    }

private:
    QFormLayout *m_form;
    QVBoxLayout *m_choices;
};

} // namespace

QSoundsEditor::QSoundsEditor(const QAppObjects &objects, QObject *parent)
    : QInterfaceEditor(parent)
    , m_config(objects.config)
{
    connect(&m_player, &QSoundPlayer::stopped, this, &QSoundsEditor::forceStop);
}

QSoundsEditor::~QSoundsEditor()
{
    m_player.stop();
}

void QSoundsEditor::registerControls(QEditorRegistry &registry)
{
    QActionManager &actions = registry.actionManager();
    const QTranslationUnit &tu = actions.translation();
    const QList<int> scope = {id(), -1};
    struct Command
    {
        const char *key;
        int caption;
        const char *slot;
        bool needsSound;
        bool checkable;
    };
    const Command commands[] = {
        {"snd_add", 218, SLOT(add()), false, false},
        {"snd_del", 219, SLOT(del()), true, false},
        {"snd_openwav", 220, SLOT(openWav()), true, false},
        {"snd_savewav", 221, SLOT(saveWav()), true, false},
        {"snd_duplicate", 222, SLOT(duplicate()), true, false},
        {"snd_delgroup", 223, SLOT(delGroup()), true, false},
        {"snd_renamegroup", 224, SLOT(renameGroup()), true, false},
        {"snd_play", 225, SLOT(play(bool)), true, true},
        {"snd_playloop", 226, SLOT(playLoop(bool)), true, true},
        {"snd_stop", 227, SLOT(stop(bool)), true, true},
        {"snd_export", 228, SLOT(fileExport()), true, false},
        {"snd_import", 229, SLOT(fileImport()), false, false},
        {"snd_projimport", 230, SLOT(projImport()), false, false},
        {"snd_prevgrp", 233, SLOT(prevGrp()), true, false},
        {"snd_nextgrp", 234, SLOT(nextGrp()), true, false},
    };
    m_playGroup = new QActionGroup(this);
    m_playGroup->setExclusive(true);
    for (const Command &c : commands) {
        QAction2 *a = actions.addAction(scope, QString::fromLatin1(c.key), c.caption, c.checkable, this, c.slot,
                                        c.needsSound ? SIGNAL(enabled(bool)) : nullptr);
        if (c.checkable)
            m_playGroup->addAction(a);
        if (qstrcmp(c.key, "snd_stop") == 0)
            m_stopAction = a;
        registry.addControl(a->key(), std::make_unique<QInterfaceControlAction>(a));
    }
    m_stopAction->setChecked(true);

    QInterfaceControlOptions list;
    list.model = nullptr;
    auto listControl = std::make_unique<QInterfaceControlWidget>(QInterfaceControlWidgetBase::ListView, -1, &list,
                                                                 nullptr, nullptr, nullptr, tu);
    m_listControl = listControl.get();
    registry.addControl(QStringLiteral("snd_sel"), std::move(listControl));

    QInterfaceControlOptions word;
    word.minimum = 0;
    word.maximum = 65535;
    registry.addControl(QStringLiteral("snd_grp"),
                        std::make_unique<QInterfaceControlWidget>(QInterfaceControlWidgetBase::SpinBox, -1, &word, this,
                                                                  SLOT(grpChanged(int)), SIGNAL(setGroup(int)), tu));
    registry.addControl(QStringLiteral("snd_num"),
                        std::make_unique<QInterfaceControlWidget>(QInterfaceControlWidgetBase::SpinBox, -1, &word, this,
                                                                  SLOT(numChanged(int)), SIGNAL(setNumber(int)), tu));
    registry.addControl(QStringLiteral("snd_grp_label"),
                        std::make_unique<QInterfaceControlWidget>(QInterfaceControlWidgetBase::Label, 231, nullptr,
                                                                  nullptr, nullptr, nullptr, tu));
    registry.addControl(QStringLiteral("snd_num_label"),
                        std::make_unique<QInterfaceControlWidget>(QInterfaceControlWidgetBase::Label, 232, nullptr,
                                                                  nullptr, nullptr, nullptr, tu));
    registry.addControl(QStringLiteral("snd_pos"),
                        std::make_unique<QInterfaceControlWidget>(QInterfaceControlWidgetBase::Label, -1, nullptr, this,
                                                                  nullptr, SIGNAL(setPosText(QString)), tu));
    registry.addControl(QStringLiteral("snd_info"),
                        std::make_unique<QInterfaceControlWidget>(QInterfaceControlWidgetBase::Label, -1, nullptr, this,
                                                                  nullptr, SIGNAL(setInfoText(QString)), tu));
    emit enabled(false);
}

// ---------------------------------------------------------------- state

QSounds *QSoundsEditor::store() const
{
    return m_project ? m_project->sounds() : nullptr;
}

bool QSoundsEditor::isModified() const
{
    const QSounds *s = store();
    return s && s->isModified();
}

QListView *QSoundsEditor::listView() const
{
    return m_listControl ? qobject_cast<QListView *>(m_listControl->widget()) : nullptr;
}

QWidget *QSoundsEditor::window() const
{
    QListView *view = listView();
    return view ? view->window() : QApplication::activeWindow();
}

bool QSoundsEditor::flag(const QString &key) const
{
    return m_config ? m_config->flag(key, true) : true;
}

QString QSoundsEditor::startFolder() const
{
    if (!m_project)
        return QString();
    const QString snd = m_project->path(QStringLiteral("snd_path"));
    return snd.isEmpty() ? m_project->path(QStringLiteral("proj_path")) : snd;
}

void QSoundsEditor::rememberFolder(const QString &file)
{
    if (m_project && !file.isEmpty())
        m_project->setPath(QStringLiteral("snd_path"), QFileInfo(file).absolutePath());
}

void QSoundsEditor::setProject(QProject *project)
{
    if (project != m_project) {
        m_player.stop();
        forceStop();
        detach();
        m_current = -1;
    }
    QInterfaceEditor::setProject(project);
}

void QSoundsEditor::activate(bool reload)
{
    QInterfaceEditor::activate(reload);
    if (!reload)
        return;
    attach();
    emit stageWanted();
}

void QSoundsEditor::deactivate()
{
    if (m_active) {
        m_player.stop();
        forceStop();
    }
    QInterfaceEditor::deactivate();
}

bool QSoundsEditor::canClose(QProject *project)
{
    // Whatever plays belongs to the project that goes.
    if (project == m_project)
        m_player.stop();
    return true;
}

void QSoundsEditor::attach()
{
    QSounds *s = store();
    if (s != m_attached) {
        detach();
        m_attached = s;
        if (s) {
            m_connections << connect(s, &QSounds::changed, this, &QSoundsEditor::storeChanged);
            m_connections << connect(s, &QAbstractItemModel::modelReset, this, [this] { select(0); });
        }
    }
    if (QListView *view = listView()) {
        if (view->model() != s) {
            view->setModel(s);
            if (view->selectionModel())
                m_connections << connect(view->selectionModel(), &QItemSelectionModel::currentChanged, this,
                                         [this](const QModelIndex &index) {
                                             if (!m_updating)
                                                 selPosChanged(index.isValid() ? index.row() : -1);
                                         });
        }
    }
    select(m_current < 0 ? 0 : m_current);
}

void QSoundsEditor::detach()
{
    for (const QMetaObject::Connection &c : std::as_const(m_connections))
        disconnect(c);
    m_connections.clear();
    m_attached = nullptr;
    if (QListView *view = listView())
        view->setModel(nullptr);
}

void QSoundsEditor::storeChanged()
{
    emit modifiedChanged();
    refresh();
}

void QSoundsEditor::select(int index)
{
    const QSounds *s = store();
    const int n = s ? s->count() : 0;
    m_current = n == 0 ? -1 : std::clamp(index, 0, n - 1);
    if (QListView *view = listView(); view && view->model() == s && s) {
        const QSignalBlocker block(view->selectionModel());
        if (m_current >= 0)
            view->setCurrentIndex(s->index(m_current));
        else
            view->clearSelection();
        if (m_current >= 0)
            view->scrollTo(s->index(m_current));
    }
    refresh();
}

void QSoundsEditor::refresh()
{
    const QSounds *s = store();
    const int n = s ? s->count() : 0;
    if (m_current >= n)
        m_current = n - 1;
    if (n > 0 && m_current < 0)
        m_current = 0;
    m_updating = true;
    emit enabled(m_current >= 0);
    emit setPosText(QStringLiteral("%1 / %2").arg(m_current + 1).arg(n));
    const SoundRecord r = s ? s->record(m_current) : SoundRecord();
    emit setGroup(r.group);
    emit setNumber(r.number);
    emit setInfoText(infoText(s, m_current));
    m_updating = false;
}

QString QSoundsEditor::infoText(const QSounds *s, int index)
{
    const QString none = tr("Channels: ---\nSample rate: ---\nBits per sample: ---\nDuration: ---");
    if (!s || index < 0 || index >= s->count())
        return none;
    const QByteArray bytes = s->sample(index);
    const QWavInfo info = QWavInfo::read(bytes);
    switch (info.kind) {
    case QWavInfo::Empty:
        return tr("No sample") + QLatin1Char('\n') + none;
    case QWavInfo::NotWav:
        return tr("Not a WAV sample (%n byte(s), kept as it is)", nullptr, int(bytes.size())) + QLatin1Char('\n')
               + none;
    case QWavInfo::OtherWav:
        return tr("Compressed WAV (format %1)").arg(info.formatTag) + QLatin1Char('\n') + none;
    case QWavInfo::Pcm:
        break;
    }
    return tr("Channels: %1 (%2)\nSample rate: %3 Hz\nBits per sample: %4 bits\nDuration: %5 seconds")
        .arg(info.channels)
        .arg(info.channels == 2 ? tr("Stereo") : tr("Mono"))
        .arg(info.sampleRate)
        .arg(info.bits)
        .arg(double(info.duration), 0, 'f', 2);
}

// ---------------------------------------------------------------- list and fields

void QSoundsEditor::selPosChanged(int index)
{
    m_current = index;
    refresh();
}

void QSoundsEditor::grpChanged(int group)
{
    QSounds *s = store();
    if (m_updating || !s || m_current < 0)
        return;
    s->setInfo(m_current, group, s->record(m_current).number);
}

void QSoundsEditor::numChanged(int number)
{
    QSounds *s = store();
    if (m_updating || !s || m_current < 0)
        return;
    s->setInfo(m_current, s->record(m_current).group, number);
}

void QSoundsEditor::prevGrp()
{
    if (QSounds *s = store(); s && m_current >= 0)
        select(s->previousGroupStart(m_current));
}

void QSoundsEditor::nextGrp()
{
    if (QSounds *s = store(); s && m_current >= 0)
        select(s->nextGroupStart(m_current));
}

void QSoundsEditor::find(const QString &text, const QQuickFindOptions &)
{
    QSounds *s = store();
    if (!s)
        return;
    static const QRegularExpression pattern(QStringLiteral("^(\\d{1,5})?(?:,\\s*(\\d{1,5}))?$"));
    const QRegularExpressionMatch m = pattern.match(text.trimmed());
    int found = -1;
    if (m.hasMatch() && !text.trimmed().isEmpty() && s->count() > 0) {
        const int group = m.captured(1).isEmpty() ? -1 : m.captured(1).toInt();
        const int number = m.captured(2).isEmpty() ? -1 : m.captured(2).toInt();
        found = s->find((m_current + 1) % s->count(), group, number);
    }
    if (found < 0) {
        QAskUser::message(window(), QMessageBox::Information, tr("Find"), tr("No sound found!"));
        return;
    }
    select(found);
}

// ---------------------------------------------------------------- file commands

bool QSoundsEditor::confirmDiscard()
{
    return !isModified()
           || QAskUser::question(window(), tr("Sounds"),
                                 tr("Do you really want to discard the changes made in the sounds?"));
}

void QSoundsEditor::clear()
{
    QSounds *s = store();
    if (!s || !confirmDiscard())
        return;
    m_player.stop();
    s->clear();
    select(0);
}

void QSoundsEditor::open()
{
    QSounds *s = store();
    if (!s || !confirmDiscard())
        return;
    const QString file = QAskUser::openFileName(window(), tr("Open sounds"), startFolder(),
                                                QProject::fileFilter(QProjectFile::Sounds));
    if (file.isEmpty())
        return;
    rememberFolder(file);
    m_player.stop();
    QProgress progress(tr("Loading sounds..."), window());
    progress.attach(s);
    QString error;
    const bool ok = s->load(file, false, &error);
    progress.close();
    if (!ok && !error.isEmpty())
        QAskUser::critical(window(), tr("Open sounds"),
                           tr("%1 can't be read: %2").arg(QDir::toNativeSeparators(file), error));
    select(0);
}

bool QSoundsEditor::saveTo(const QString &path)
{
    QSounds *s = store();
    if (!s)
        return false;
    if (s->isEmpty()) {
        QAskUser::warning(window(), tr("Save SND"),
                          tr("You can't save an empty SND because M.U.G.E.N. will not open it."));
        return false;
    }
    QProgress progress(tr("Saving sounds..."), window());
    progress.attach(s);
    QString error;
    const bool ok = s->save(path, false, &error);
    progress.close();
    if (!ok)
        QAskUser::critical(window(), tr("Save sounds"),
                           tr("%1 can't be saved: %2").arg(QDir::toNativeSeparators(path), error));
    return ok;
}

void QSoundsEditor::save()
{
    QSounds *s = store();
    if (!s)
        return;
    if (s->path().isEmpty())
        saveAs();
    else
        saveTo(s->path());
}

void QSoundsEditor::saveAs()
{
    QSounds *s = store();
    if (!s || !m_project)
        return;
    const QString start = s->path().isEmpty() ? m_project->path(QStringLiteral("proj_path")) : s->path();
    const QString file = QAskUser::saveFileName(window(), tr("Save sounds as"), start,
                                                QProject::fileFilter(QProjectFile::Sounds));
    if (!file.isEmpty())
        saveTo(file);
}

void QSoundsEditor::undo()
{
    if (QSounds *s = store(); s && s->canUndo()) {
        s->undo();
        select(m_current);
    }
}

void QSoundsEditor::redo()
{
    if (QSounds *s = store(); s && s->canRedo()) {
        s->redo();
        select(m_current);
    }
}

// ---------------------------------------------------------------- sounds

void QSoundsEditor::add()
{
    QSounds *s = store();
    if (!s)
        return;
    const QStringList files = QAskUser::openFileNames(window(), tr("Add sounds"), startFolder(), WavFilter);
    if (files.isEmpty())
        return;
    rememberFolder(files.first());
    const SoundRecord here = s->record(m_current);
    int group = here.group;
    int number = m_current >= 0 ? s->freeNumber(group, here.number) : 0;
    int step = 1;
    if (flag(QStringLiteral("show_addsound_dialog"))) {
        FormDialog dlg(QStringLiteral("AddSom"), tr("Add sounds"), window());
        QSpinBox *g = dlg.addNumber(QStringLiteral("group"), tr("Group:"), group);
        QSpinBox *n = dlg.addNumber(QStringLiteral("number"), tr("Index:"), number);
        dlg.addChoice(QStringLiteral("OneInc"), QStringLiteral("1,2,3,5,..."), true);
        QRadioButton *ten = dlg.addChoice(QStringLiteral("TenInc"), QStringLiteral("10,20,30,..."), false);
        if (QAskUser::exec(&dlg) != QDialog::Accepted)
            return;
        group = g->value();
        number = n->value();
        step = ten->isChecked() ? 10 : 1;
    }
    QStringList failed;
    int first = -1;
    s->beginMacro(tr("Add sounds"));
    for (const QString &file : files) {
        QFile in(file);
        if (!in.open(QIODevice::ReadOnly)) {
            failed << QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(file), in.errorString());
            continue;
        }
        const int row = s->add(group, number, in.readAll());
        if (first < 0)
            first = row;
        number += step;
    }
    s->endMacro();
    if (first >= 0)
        select(first);
    if (!failed.isEmpty())
        QAskUser::warning(window(), tr("Add sounds"), tr("Some files can't be read:\n%1").arg(failed.join(QLatin1Char('\n'))));
}

void QSoundsEditor::del()
{
    QSounds *s = store();
    if (!s || m_current < 0)
        return;
    if (flag(QStringLiteral("confirm_delete"))
        && !QAskUser::question(window(), tr("Delete"), tr("Do you really want to delete the sound?")))
        return;
    m_player.stop();
    s->remove(m_current);
    select(m_current);
}

void QSoundsEditor::duplicate()
{
    QSounds *s = store();
    if (s && m_current >= 0)
        select(s->duplicate(m_current));
}

void QSoundsEditor::delGroup()
{
    QSounds *s = store();
    if (!s || m_current < 0)
        return;
    const int group = s->record(m_current).group;
    if (flag(QStringLiteral("confirm_delete"))
        && !QAskUser::question(window(), tr("Delete group"),
                               tr("Do you really want to delete every sound of group %1?").arg(group)))
        return;
    m_player.stop();
    s->removeGroup(group);
    select(m_current);
}

void QSoundsEditor::renameGroup()
{
    QSounds *s = store();
    if (!s || m_current < 0)
        return;
    const int group = s->record(m_current).group;
    FormDialog dlg(QStringLiteral("RenameGroup"), tr("Rename group %1").arg(group), window());
    QSpinBox *to = dlg.addNumber(QStringLiteral("group"), tr("New group:"), group);
    if (QAskUser::exec(&dlg) != QDialog::Accepted || to->value() == group)
        return;
    s->renameGroup(group, to->value());
    select(m_current);
}

void QSoundsEditor::openWav()
{
    QSounds *s = store();
    if (!s || m_current < 0)
        return;
    const QString file = QAskUser::openFileName(window(), tr("Change WAV"), startFolder(), WavFilter);
    if (file.isEmpty())
        return;
    rememberFolder(file);
    m_player.stop();
    QString error;
    if (!s->setSample(m_current, file, &error))
        QAskUser::critical(window(), tr("Change WAV"),
                           tr("%1 can't be read: %2").arg(QDir::toNativeSeparators(file), error));
    refresh();
}

void QSoundsEditor::saveWav()
{
    QSounds *s = store();
    if (!s || m_current < 0)
        return;
    const SoundRecord here = s->record(m_current);
    FormDialog dlg(QStringLiteral("SaveItem"), tr("Save WAV"), window());
    dlg.addChoice(QStringLiteral("current"), tr("The current sound"), true);
    QRadioButton *group = dlg.addChoice(QStringLiteral("group"), tr("Every sound of group %1").arg(here.group), false);
    QRadioButton *all = dlg.addChoice(QStringLiteral("all"), tr("All sounds"), false);
    if (QAskUser::exec(&dlg) != QDialog::Accepted)
        return;
    QList<int> rows;
    for (int i = 0; i < s->count(); ++i)
        if (all->isChecked() || (group->isChecked() && s->record(i).group == here.group) || i == m_current)
            rows << i;
    const QString suggested = QDir(startFolder()).filePath(QStringLiteral("%1-%2.wav").arg(here.group).arg(here.number));
    const QString file = QAskUser::saveFileName(window(), tr("Save WAV"), suggested, WavFilter);
    if (file.isEmpty())
        return;
    rememberFolder(file);
    QStringList failed;
    for (int i : std::as_const(rows)) {
        const SoundRecord r = s->record(i);
        const QString target = rows.size() == 1
                                   ? file
                                   : QFileInfo(file).absoluteDir().filePath(
                                         QStringLiteral("%1-%2.wav").arg(r.group).arg(r.number));
        QString error;
        if (!s->saveWav(i, target, &error))
            failed << QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(target), error);
    }
    if (!failed.isEmpty())
        QAskUser::critical(window(), tr("Save WAV"), failed.join(QLatin1Char('\n')));
}

// ---------------------------------------------------------------- playing

void QSoundsEditor::play(bool on)
{
    QSounds *s = store();
    if (!on || !s || m_current < 0)
        return;
    if (!m_player.play(s->sample(m_current), s->record(m_current).duration, false))
        forceStop();
}

void QSoundsEditor::playLoop(bool on)
{
    QSounds *s = store();
    if (!on || !s || m_current < 0)
        return;
    if (!m_player.play(s->sample(m_current), s->record(m_current).duration, true))
        forceStop();
}

void QSoundsEditor::stop(bool on)
{
    if (on)
        m_player.stop();
}

void QSoundsEditor::forceStop()
{
    if (m_stopAction && !m_stopAction->isChecked())
        m_stopAction->setChecked(true);
    m_player.stop();
}

// ---------------------------------------------------------------- export and import

void QSoundsEditor::fileExport()
{
    QSounds *s = store();
    if (!s || s->isEmpty())
        return;
    const QString file = QAskUser::saveFileName(window(), tr("Export sounds"), startFolder(),
                                                tr("Brawlforge Export (*.bfe);;Elecbyte SndMaker (*.def)"));
    if (file.isEmpty())
        return;
    rememberFolder(file);
    QProgress progress(tr("Exporting sounds..."), window());
    progress.attach(s);
    QString error;
    const bool ok = s->exportDef(file, &error);
    progress.close();
    if (!ok)
        QAskUser::critical(window(), tr("Export sounds"),
                           tr("%1 can't be written: %2").arg(QDir::toNativeSeparators(file), error));
}

void QSoundsEditor::fileImport()
{
    QSounds *s = store();
    if (!s)
        return;
    const QString file = QAskUser::openFileName(window(), tr("Import sounds"), startFolder(),
                                                tr("Brawlforge Export (*.bfe);;Elecbyte SndMaker (*.def)"));
    if (file.isEmpty())
        return;
    rememberFolder(file);
    const int before = s->count();
    QProgress progress(tr("Importing sounds..."), window());
    progress.attach(s);
    QString error;
    QStringList problems;
    const bool ok = s->importDef(file, &error, &problems);
    progress.close();
    if (!ok)
        QAskUser::critical(window(), tr("Import sounds"),
                           tr("%1 can't be read: %2").arg(QDir::toNativeSeparators(file), error));
    else if (!problems.isEmpty())
        QAskUser::warning(window(), tr("Import sounds"), problems.join(QLatin1Char('\n')));
    select(s->count() > before ? before : m_current);
}

void QSoundsEditor::projImport()
{
    QSounds *s = store();
    if (!s || !m_projects)
        return;
    const QList<QProject *> projects = m_projects();
    FormDialog dlg(QStringLiteral("TabImport"), tr("Group"), window());
    auto *list = new QListWidget;
    list->setObjectName(QStringLiteral("projects"));
    for (int i = 0; i < projects.size(); ++i) {
        QProject *p = projects.at(i);
        const QString name = p->name().isEmpty() ? QFileInfo(p->definitions()->fileName()).completeBaseName() : p->name();
        list->addItem(tr("%1 (%n sound(s))", nullptr, p->sounds()->count())
                          .arg(name.isEmpty() ? tr("Project %1").arg(i + 1) : name));
    }
    list->setCurrentRow(0);
    dlg.layout()->addWidget(list);
    if (QAskUser::exec(&dlg) != QDialog::Accepted)
        return;
    QProject *from = projects.value(list->currentRow());
    if (!from)
        return;
    if (from == m_project) {
        QAskUser::warning(window(), tr("Import"), tr("You can't import from the destination project!"));
        return;
    }
    const QSounds *source = from->sounds();
    if (source->isEmpty()) {
        QAskUser::message(window(), QMessageBox::Information, tr("Import"), tr("No sound imported!"));
        return;
    }
    const int first = s->count();
    s->beginMacro(tr("importProj"));
    for (int i = 0; i < source->count(); ++i)
        s->add(source->record(i).group, source->record(i).number, source->sample(i));
    s->endMacro();
    select(first);
    QAskUser::message(window(), QMessageBox::Information, tr("Import"),
                      tr("%n sound(s) were imported!", nullptr, source->count()));
}
