#include "qanimations.h"

#include "airformat.h"
#include "base/qmessages.h"
#include "qanimationparser.h"

#include <QClipboard>
#include <QDataStream>
#include <QFileInfo>
#include <QGuiApplication>

QAnimations::QAnimations(QObject *parent)
    : QOrganizableObject(parent)
{
    AnimPool::storeCreated();
}

QAnimations::~QAnimations()
{
    AnimPool::giveActions(m_actions);
    m_actions.clear();
    AnimPool::storeDestroyed();
}

// ---------------------------------------------------------------- list model

int QAnimations::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant QAnimations::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid() || index.row() >= count())
        return QVariant();
    const AnimAction *a = m_actions.at(index.row());
    return QStringLiteral("%1 - %2").arg(QString::number(a->number), a->name);
}

void QAnimations::move(int from, int to)
{
    if (from < 0 || to < 0 || from >= count() || to >= count() || from == to)
        return;
    // beginMoveRows wants the row before which the moved one lands.
    if (!beginMoveRows(QModelIndex(), from, from, QModelIndex(), to > from ? to + 1 : to))
        return;
    m_actions.move(from, to);
    endMoveRows();
    edited();
}

void QAnimations::autoOrganize()
{
    for (int i = 1; i < count(); ++i) {
        for (int j = 0; j < i; ++j) {
            if (m_actions.at(j)->number > m_actions.at(i)->number) {
                move(i, j);
                break;
            }
        }
    }
}

// ---------------------------------------------------------------- reading

const AnimAction *QAnimations::action(int anim) const
{
    return anim >= 0 && anim < count() ? m_actions.at(anim) : nullptr;
}

AnimFrame *QAnimations::frameAt(int anim, int frame) const
{
    if (anim < 0 || anim >= count())
        return nullptr;
    const QList<AnimFrame *> &frames = m_actions.at(anim)->frames;
    return frame >= 0 && frame < frames.size() ? frames.at(frame) : nullptr;
}

int QAnimations::frameCount(int anim) const
{
    const AnimAction *a = action(anim);
    return a ? int(a->frames.size()) : 0;
}

AnimFrameData QAnimations::frame(int anim, int frame) const
{
    const AnimFrame *f = frameAt(anim, frame);
    return f ? AnimFrameData(*f) : AnimFrameData();
}

int QAnimations::frameLength(int anim, int frame) const
{
    const AnimFrame *f = frameAt(anim, frame);
    return f ? f->time : 0;
}

QList<QRect> *QAnimations::clsnList(int anim, int frame, int type)
{
    AnimFrame *f = frameAt(anim, frame);
    return f && type >= 0 && type < 4 ? &f->clsn[type] : nullptr;
}

const QList<QRect> *QAnimations::clsnList(int anim, int frame, int type) const
{
    const AnimFrame *f = frameAt(anim, frame);
    return f && type >= 0 && type < 4 ? &f->clsn[type] : nullptr;
}

QList<QRect> QAnimations::clsnInForce(int anim, int frame, int kind) const
{
    const AnimAction *a = action(anim);
    if (!a || frame < 0 || frame >= a->frames.size() || kind < 0 || kind > 1)
        return {};
    const int own = kind;
    const int byDefault = kind | AnimFrame::Clsn1Default;
    const AnimFrame *f = a->frames.at(frame);
    if (f->hasClsn(own))
        return f->clsn[own];
    for (int i = frame; i >= 0; --i) {
        const AnimFrame *g = a->frames.at(i);
        if (g->hasClsn(byDefault))
            return g->clsn[byDefault];
    }
    return {};
}

// ---------------------------------------------------------------- edits

void QAnimations::edited()
{
    m_modified = true;
    emit changed();
}

void QAnimations::add()
{
    insert(count());
}

void QAnimations::insert(int pos)
{
    if (pos < 0 || pos > count())
        pos = count();
    AnimAction *a = AnimPool::takeAction();
    a->number = count();
    AnimFrame *f = AnimPool::takeFrame();
    f->resetForEditor();
    a->frames.append(f);
    beginInsertRows(QModelIndex(), pos, pos);
    m_actions.insert(pos, a);
    endInsertRows();
    edited();
}

void QAnimations::remove(int anim)
{
    if (anim < 0 || anim >= count())
        return;
    beginRemoveRows(QModelIndex(), anim, anim);
    AnimAction *a = m_actions.takeAt(anim);
    endRemoveRows();
    AnimPool::giveAction(a);
    edited();
}

void QAnimations::duplicate(int anim, int newNumber)
{
    const AnimAction *source = action(anim);
    if (!source)
        return;
    AnimAction *copy = AnimPool::copyAction(*source);
    if (newNumber != -1)
        copy->number = newNumber;
    beginInsertRows(QModelIndex(), anim + 1, anim + 1);
    m_actions.insert(anim + 1, copy);
    endInsertRows();
    edited();
}

void QAnimations::setAction(int anim, const QString &name, int number)
{
    if (anim < 0 || anim >= count())
        return;
    AnimAction *a = m_actions.at(anim);
    a->name = name;
    a->number = number;
    const QModelIndex i = index(anim);
    emit dataChanged(i, i);
    edited();
}

void QAnimations::addFrame(int anim)
{
    insertFrame(anim, frameCount(anim));
}

void QAnimations::insertFrame(int anim, int pos)
{
    if (anim < 0 || anim >= count())
        return;
    QList<AnimFrame *> &frames = m_actions.at(anim)->frames;
    if (pos < 0 || pos > frames.size())
        pos = int(frames.size());
    AnimFrame *f = AnimPool::takeFrame();
    f->resetForEditor();
    frames.insert(pos, f);
    edited();
}

void QAnimations::removeFrame(int anim, int frame)
{
    if (!frameAt(anim, frame))
        return;
    AnimPool::giveFrame(m_actions.at(anim)->frames.takeAt(frame));
    edited();
}

void QAnimations::clearFrames(int anim)
{
    if (anim < 0 || anim >= count())
        return;
    QList<AnimFrame *> &frames = m_actions.at(anim)->frames;
    for (AnimFrame *f : std::as_const(frames))
        AnimPool::giveFrame(f);
    frames.clear();
    edited();
}

void QAnimations::setFrame(int anim, int frame, const AnimFrameData &data)
{
    AnimFrame *f = frameAt(anim, frame);
    if (!f)
        return;
    static_cast<AnimFrameData &>(*f) = data;
    edited();
}

void QAnimations::clsnChanged()
{
    edited();
}

// ---------------------------------------------------------------- files

QString QAnimations::messageName() const
{
    return m_fileName.isEmpty() ? QStringLiteral("animations.air") : m_fileName;
}

void QAnimations::replaceAll(const QList<AnimAction *> &actions)
{
    if (!m_actions.isEmpty()) {
        beginRemoveRows(QModelIndex(), 0, count() - 1);
        const QList<AnimAction *> old = m_actions;
        m_actions.clear();
        endRemoveRows();
        AnimPool::giveActions(old);
    }
    if (!actions.isEmpty()) {
        beginInsertRows(QModelIndex(), 0, int(actions.size()) - 1);
        m_actions = actions;
        endInsertRows();
    }
}

void QAnimations::loadFileText(QString text, const QString &path, const QByteArray &codecName, bool keepPath)
{
    emit updateStarted();
    // A backup read back keeps the file the store belongs to.
    const QString keptName = m_fileName;
    const QString keptPath = m_path;
    clear();
    const QString name = QFileInfo(path).fileName();
    m_fileName = keepPath ? keptName : name;
    m_path = keepPath ? keptPath : path;
    if (!codecName.isEmpty())
        m_codecName = codecName;
    QAnimationParser parser(m_messages, name);
    parser.setText(std::move(text));
    const QList<AnimAction *> actions = parser.parseAll();
    m_modified = false;
    emit changed();
    replaceAll(actions);
    emit updateFinished();
}

void QAnimations::fileSaved(const QString &path)
{
    m_fileName = QFileInfo(path).fileName();
    m_path = path;
    m_modified = false;
    emit changed();
}

void QAnimations::loadText(const QString &text, const QString &name, bool definitions)
{
    emit updateStarted();
    clear();
    m_fileName = name;
    QAnimationParser parser(m_messages, messageName());
    parser.setSource(definitions ? QAnimationParser::DefinitionsText : QAnimationParser::AirText);
    parser.setText(text);
    const QList<AnimAction *> actions = parser.parseAll();
    emit changed();
    replaceAll(actions);
    emit updateFinished();
}

void QAnimations::reloadText(const QString &text, bool definitions)
{
    QAnimationParser parser(nullptr, messageName());
    parser.setSource(definitions ? QAnimationParser::DefinitionsText : QAnimationParser::AirText);
    parser.setText(text);
    const QList<AnimAction *> actions = parser.parseAll();
    replaceAll(actions);
    m_modified = false;
    emit changed();
}

QString QAnimations::fileText() const
{
    return AirFormat::fileText(m_actions);
}

void QAnimations::setPath(const QString &path)
{
    m_path = path;
    m_fileName = QFileInfo(path).fileName();
}

void QAnimations::clear()
{
    replaceAll({});
    m_codecName = "UTF-8";
    m_path.clear();
    m_fileName.clear();
    m_modified = false;
    emit changed();
}

// ---------------------------------------------------------------- text

QString QAnimations::actionText(int anim) const
{
    const AnimAction *a = action(anim);
    return a ? AirFormat::actionText(*a) : QString();
}

void QAnimations::copyAction(int anim) const
{
    if (!action(anim) || !qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return;
    QGuiApplication::clipboard()->setText(actionText(anim));
}

bool QAnimations::pasteAction(int pos)
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return false;
    const QString text = QGuiApplication::clipboard()->text();
    if (text.isEmpty())
        return false;
    if (pos < 0 || pos > count())
        pos = count();
    insert(pos);
    return updateFromText(pos, text);
}

bool QAnimations::updateFromText(int anim, const QString &text)
{
    if (anim < 0 || anim >= count())
        return false;
    if (m_messages)
        m_messages->addInfo(tr("Update animation %1 from text").arg(anim));
    emit updateStarted();
    // Text around the action is skipped without a word, as in a DEF.
    QAnimationParser parser(m_messages, messageName());
    parser.setSource(QAnimationParser::DefinitionsText);
    parser.setText(text);
    AnimAction *fresh = parser.parseAction();
    AnimAction *old = m_actions.at(anim);
    m_actions[anim] = fresh;
    AnimPool::giveAction(old);
    const QModelIndex i = index(anim);
    emit dataChanged(i, i);
    edited();
    emit updateFinished();
    return true;
}

bool QAnimations::addClsnFromText(int anim, int frame, const QString &text)
{
    AnimFrame *f = frameAt(anim, frame);
    if (!f)
        return false;
    if (m_messages)
        m_messages->addInfo(tr("Add CLSNs to the animation %1, frame %2 from text").arg(anim).arg(frame));
    QAnimationParser parser(m_messages, messageName());
    QList<QRect> boxes[4];
    parser.parseClsn(text, boxes);
    for (int i = 0; i < 4; ++i)
        f->clsn[i].append(boxes[i]);
    edited();
    return true;
}

// ---------------------------------------------------------------- package form

void QAnimations::writeBugReport(QDataStream &out) const
{
    out << QByteArray() << qint32(m_actions.size());
    for (const AnimAction *a : m_actions) {
        out << a->name << a->number << a->firstLine << a->headerLine << qint32(a->frames.size());
        for (const AnimFrame *f : a->frames) {
            out << f->angle << f->x << f->y << f->flip << f->group << f->interpAngle << f->interpBlend << f->number
                << f->interpOffset << f->interpScale << f->loopstart << f->scaleX << f->scaleY << f->time << f->trans
                << f->dst << f->src;
            for (qint32 line : f->lines)
                out << line;
            for (const QList<QRect> &boxes : f->clsn) {
                out << qint32(boxes.size());
                for (const QRect &r : boxes)
                    out << r;
            }
        }
    }
}

bool QAnimations::readBugReport(QDataStream &in)
{
    QByteArray packed;
    in >> packed;
    if (!packed.isEmpty())
        (void)qUncompress(packed); // read for the format's sake; nothing is in it
    qint32 actionCount = 0;
    in >> actionCount;
    // Records are made as the bytes arrive, never ahead of them by a count.
    QList<AnimAction *> actions;
    bool ok = in.status() == QDataStream::Ok && actionCount >= 0;
    for (qint32 i = 0; ok && i < actionCount; ++i) {
        AnimAction *a = AnimPool::takeAction();
        actions.append(a);
        qint32 frameCount = 0;
        in >> a->name >> a->number >> a->firstLine >> a->headerLine >> frameCount;
        ok = in.status() == QDataStream::Ok && frameCount >= 0;
        for (qint32 j = 0; ok && j < frameCount; ++j) {
            AnimFrame *f = AnimPool::takeFrame();
            a->frames.append(f);
            in >> f->angle >> f->x >> f->y >> f->flip >> f->group >> f->interpAngle >> f->interpBlend >> f->number
                >> f->interpOffset >> f->interpScale >> f->loopstart >> f->scaleX >> f->scaleY >> f->time >> f->trans
                >> f->dst >> f->src;
            for (qint32 &line : f->lines)
                in >> line;
            for (QList<QRect> &boxes : f->clsn) {
                qint32 n = 0;
                in >> n;
                ok = in.status() == QDataStream::Ok && n >= 0;
                for (qint32 k = 0; ok && k < n; ++k) {
                    QRect r;
                    in >> r;
                    ok = in.status() == QDataStream::Ok;
                    if (ok)
                        boxes.append(r);
                }
                if (!ok)
                    break;
            }
            ok = ok && in.status() == QDataStream::Ok;
        }
    }
    if (!ok) {
        AnimPool::giveActions(actions);
        return false;
    }
    emit updateStarted();
    replaceAll(actions);
    edited();
    emit updateFinished();
    return true;
}

void QAnimations::writeStream(QByteArray *bytes) const
{
    if (!bytes)
        return;
    QDataStream out(bytes, QIODevice::WriteOnly);
    writeBugReport(out);
}

bool QAnimations::readStream(const QByteArray &bytes)
{
    QDataStream in(bytes);
    return readBugReport(in);
}
