#pragma once

#include "animrecords.h"
#include "base/qbugreport.h"
#include "base/qorganizableobject.h"

#include <QByteArray>
#include <QList>
#include <QString>

class QDataStream;
class QMessages;

// The actions of one AIR file, one row an action. It reads and writes the AIR
// text, single actions as text (the text view, the clipboard), and its image in
// bug reports. Its file's bytes and encoding are the project's (QAnimationsFile);
// stages and storyboards keep their actions in the DEF, which the project keeps
// in step with the store (QDefAnimations). Every edit sets the
// modified flag and emits changed(); there is no undo, the text view is the
// history.
class QAnimations : public QOrganizableObject, public QBugReportSection
{
    Q_OBJECT

public:
    explicit QAnimations(QObject *parent = nullptr);
    ~QAnimations() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    void move(int from, int to) override;
    // Sorts by action number, keeping the order of equal numbers.
    void autoOrganize() override;

    int count() const { return int(m_actions.size()); }
    bool isEmpty() const { return m_actions.isEmpty(); }
    bool isModified() const { return m_modified; }

    QString fileName() const { return m_fileName; }
    QString path() const { return m_path; }
    QByteArray codecName() const { return m_codecName; }
    QMessages *messages() const { return m_messages; }
    void setMessages(QMessages *messages) { m_messages = messages; }

    // Reading. Out-of-range indices give null, 0 or an empty value.
    const AnimAction *action(int anim) const;
    int frameCount(int anim) const;
    AnimFrameData frame(int anim, int frame) const;
    int frameLength(int anim, int frame) const;
    // The boxes a frame states itself, by AnimFrame::Clsn; null when out of range.
    QList<QRect> *clsnList(int anim, int frame, int type);
    const QList<QRect> *clsnList(int anim, int frame, int type) const;
    // The boxes that hold while the frame shows, Clsn1 (0) or Clsn2 (1): the
    // frame's own block, else the last default block of the action up to it.
    QList<QRect> clsnInForce(int anim, int frame, int kind) const;
    const QList<AnimAction *> &actions() const { return m_actions; }

    // Action edits.
    void add();
    void insert(int pos);
    void remove(int anim);
    // A deep copy right after the original; newNumber -1 keeps the number.
    void duplicate(int anim, int newNumber = -1);
    void setAction(int anim, const QString &name, int number);

    // Frame edits.
    void addFrame(int anim);
    void insertFrame(int anim, int pos);
    void removeFrame(int anim, int frame);
    void clearFrames(int anim);
    void setFrame(int anim, int frame, const AnimFrameData &data);
    // Tells the store that boxes changed through clsnList().
    void clsnChanged();

    // The store's file. Bytes and encodings are the project's business (see
    // QAnimationsFile): the store takes the decoded text of its file, with the
    // encoding found, and hears when it was written.
    void loadFileText(QString text, const QString &path, const QByteArray &codecName, bool keepPath = false);
    void fileSaved(const QString &path);
    // Binds the store to another file that holds the same text (a copy of its
    // file made by the project's Save As).
    void setPath(const QString &path);
    // The actions of a text already in memory: a DEF (stage, storyboard,
    // screen packs) or an AIR; `name` is the file name used in messages.
    void loadText(const QString &text, const QString &name, bool definitions);
    // Replaces the actions with those of a text without any message, leaving
    // name, path and codec; the modified flag is cleared.
    void reloadText(const QString &text, bool definitions);
    void clear();

    // The whole file as saved, and one action as text.
    QString fileText() const;
    QString actionText(int anim) const;
    void copyAction(int anim) const;
    bool pasteAction(int pos);
    bool updateFromText(int anim, const QString &text);
    bool addClsnFromText(int anim, int frame, const QString &text);

    // Image of the store for bug-report packages.
    void writeStream(QByteArray *bytes) const;
    bool readStream(const QByteArray &bytes);
    void writeBugReport(QDataStream &out) const override;
    bool readBugReport(QDataStream &in) override;

signals:
    void changed();
    void updateStarted();
    void updateFinished();

private:
    AnimFrame *frameAt(int anim, int frame) const;
    void edited();
    void replaceAll(const QList<AnimAction *> &actions);
    QString messageName() const;

    QString m_fileName;
    QMessages *m_messages = nullptr;
    QList<AnimAction *> m_actions;
    bool m_modified = false;
    QByteArray m_codecName = "UTF-8";
    QString m_path;
};
