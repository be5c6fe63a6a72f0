#pragma once

#include <QDialog>

class QButtonGroup;
class QProject;
struct QRGBPal;
class QCheckBox;
class QComboBox;
class QListWidget;
class QRadioButton;
class QSpinBox;

// The small dialogs of the sprites editor. Every field has an object name, so
// that a scripted answer (QAskUser's dialog handler) can fill it in.

// How added images are numbered, placed on their axis, given a palette and cropped.
class AddSpr : public QDialog
{
    Q_OBJECT

public:
    enum Axis { AxisNO, AxisN, AxisNL, AxisO, AxisC, AxisL, AxisSO, AxisS, AxisSL, AxisXY };
    enum Crop { NoCrop, CropBeforeAxis, CropAfterAxis };

    explicit AddSpr(QWidget *parent = nullptr);

    void setDefaults(int group, int number, int x, int y, bool blankAxis, int paletteGroup, int paletteNumber);
    int group() const;
    int number() const;
    int step() const; // 1 or 10
    int axisPreset() const;
    QPoint explicitAxis() const;
    bool reversed() const;
    int paletteMode() const;
    int paletteGroup() const;
    int paletteNumber() const;
    int cropMode() const;

    // The axis of a w x h sprite under `preset` (AxisXY: `explicitAxis`).
    static QPoint axisFor(int preset, int width, int height, const QPoint &explicitAxis);

private:
    QSpinBox *m_group, *m_number, *m_x, *m_y, *m_pGroup, *m_pNumber;
    QRadioButton *m_ten;
    QButtonGroup *m_axis;
    QCheckBox *m_reversed;
    QComboBox *m_palette, *m_crop;
};

// A group, all of it or an interval of numbers; with `rename`, the new group too.
class GroupDlg : public QDialog
{
    Q_OBJECT

public:
    GroupDlg(bool rename, int group, QWidget *parent = nullptr);

    int group() const;
    int newGroup() const;
    bool whole() const;
    int first() const;
    int last() const;

private:
    QSpinBox *m_group, *m_newGroup = nullptr, *m_first, *m_last;
    QRadioButton *m_whole;
};

// Duplicate as a link or as a copy of the image.
class CloneSpr : public QDialog
{
    Q_OBJECT

public:
    explicit CloneSpr(QWidget *parent = nullptr);
    bool copyImage() const;

private:
    QRadioButton *m_copy;
};

// Which sprites an export writes: the current one, its group, or an interval of positions.
class SaveItem : public QDialog
{
    Q_OBJECT

public:
    enum Which { Current, Group, Interval };
    SaveItem(int count, int current, QWidget *parent = nullptr);
    int which() const;
    int first() const; // positions, from 1
    int last() const;

private:
    QButtonGroup *m_which;
    QSpinBox *m_first, *m_last;
};

// The sprite groups, to be checked; "Apply" hands the checked ones to the
// caller at once and leaves the dialog open, "Close" ends it.
class AppPalDlg : public QDialog
{
    Q_OBJECT

public:
    AppPalDlg(const QList<int> &groups, QWidget *parent = nullptr);
    QList<int> checkedGroups() const;

signals:
    void apply(const QList<int> &groups);

private:
    void setAll(int mode); // 0 check, 1 uncheck, 2 invert

    QListWidget *m_list;
};

// The group and the first number of palettes about to be added.
class AddSom : public QDialog
{
    Q_OBJECT

public:
    AddSom(const QString &title, int group, int number, QWidget *parent = nullptr);
    int group() const;
    int number() const;

private:
    QSpinBox *m_group, *m_number;
};

// The folder a project last used for `key` ("spr_path", ...), empty without a
// project; and keeping the folder of a chosen file there for the next time.
QString projectFolder(const QProject *project, const char *key);
void rememberFolder(QProject *project, const char *key, const QString &file);

// Asks for a palette file, starting in the project's palette folder, which
// then follows the choice, and reads it; a file that can't be read is
// reported. True when `colors` holds the file's colours.
bool openPaletteFile(QWidget *parent, const QString &title, QProject *project, QRGBPal *colors);
