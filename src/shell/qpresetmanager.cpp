#include "qpresetmanager.h"

#include "shell/qaction2.h"
#include "shell/qcolorsetmanager.h"
#include "shell/qiconsetmanager.h"
#include "base/qlifecyclelog.h"
#include "base/qxmlhelper.h"
#include "qactionmanager.h"
#include "qeditorregistry.h"
#include "qwindowlayout.h"
#include "qinterfacecontrol.h"
#include "qpanelwidget.h"
#include "qstylesheetmanager.h"

#include <QDomDocument>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollBar>
#include <QToolButton>

namespace {
const QRegularExpression &metricPattern()
{
    static const QRegularExpression p(QStringLiteral("^([0-9]{1,3}),([0-9]{1,3}),([0-9]{1,3})$"));
    return p;
}
const QRegularExpression &pairPattern()
{
    static const QRegularExpression p(QStringLiteral("^([0-9]{1,3}),([0-9]{1,3})$"));
    return p;
}

void applyMetric(QPanelWidget *panel, const QString &text, int scale)
{
    // A metric that doesn't match leaves the panel as it was.
    const QRegularExpressionMatch m = metricPattern().match(text);
    if (!panel || !m.hasMatch())
        return;
    panel->setMinimumWidth(m.captured(1).toInt() * scale);
    panel->setTitleMetrics(m.captured(2).toInt() * scale, m.captured(3).toInt() * scale);
}

Qt::Alignment alignment(const QString &text)
{
    static const QRegularExpression p(QStringLiteral("^([a-z]{1,7}),([a-z]{1,7})$"));
    const QRegularExpressionMatch m = p.match(text);
    if (!m.hasMatch())
        return Qt::AlignLeft | Qt::AlignTop;
    Qt::Alignment a;
    const QString h = m.captured(1);
    const QString v = m.captured(2);
    a |= h == QLatin1String("right")     ? Qt::AlignRight
         : h == QLatin1String("center")  ? Qt::AlignHCenter
         : h == QLatin1String("justify") ? Qt::AlignJustify
                                         : Qt::AlignLeft;
    a |= v == QLatin1String("bottom")   ? Qt::AlignBottom
         : v == QLatin1String("center") ? Qt::AlignVCenter
                                        : Qt::AlignTop;
    return a;
}
} // namespace

QPresetManager::QPresetManager(const QStringList &folders, QIconsetManager *iconsets,
                               QStylesheetManager *stylesheets, QColorsetManager *colorsets)
    : m_entries(folders, QEntryFolder::Files, QStringLiteral("*.xml"))
    , m_iconsets(iconsets)
    , m_stylesheets(stylesheets)
    , m_colorsets(colorsets)
{
    QLifecycleLog::record(QStringLiteral("+QPresetManager"));
}

QPresetManager::~QPresetManager()
{
    QLifecycleLog::record(QStringLiteral("-QPresetManager"));
}

int QPresetManager::screenDpi() const
{
    if (m_dpiOverride > 0)
        return m_dpiOverride;
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen)
        return 96;
    // Widget geometry is already in device-independent pixels, so the part of
    // the density that the device pixel ratio covers is taken out.
    const qreal ratio = screen->devicePixelRatio() > 0 ? screen->devicePixelRatio() : 1;
    return int(screen->physicalDotsPerInchX() / ratio);
}

bool QPresetManager::apply(QEditorRegistry &target, const QString &name, const QString &iconset,
                           const QString &stylesheet, const QString &colorset)
{
    QMap<QString, QToolBarEntry> &entries = target.toolbarEntries();
    for (QToolBarEntry &entry : entries)
        entry.actions.clear();
    for (QInterfaceControl *c : target.controls())
        c->clear();

    QDomDocument doc(QStringLiteral("ORVPresetML"));
    const QString file = m_entries.filePath(name);
    if (file.isEmpty() || !QXmlHelper::parseFile(doc, file))
        return false;
    const QDomElement root = doc.documentElement();
    if (root.tagName() != QLatin1String("preset"))
        return false;

    const QString classic = QStringLiteral("Classic");
    if (m_stylesheets)
        m_stylesheets->apply(stylesheet.isEmpty() ? root.attribute(QStringLiteral("stylesheet"), classic)
                                                    : stylesheet);
    if (m_iconsets)
        m_iconsets->apply(iconset.isEmpty() ? root.attribute(QStringLiteral("iconset"), classic)
                                              : iconset,
                            &target.actionManager());
    if (m_colorsets)
        m_colorsets->load(colorset.isEmpty() ? root.attribute(QStringLiteral("colorset"), classic)
                                               : colorset);

    m_scale = qMax(1, screenDpi() / 96);
    const int s = m_scale;
    applyMetric(target.layout().leftPanel(), root.attribute(QStringLiteral("panel-metric"), QStringLiteral("220,0,30")), s);
    applyMetric(target.layout().rightPanel(), root.attribute(QStringLiteral("extra-metric"), QStringLiteral("220,0,30")), s);

    const QTranslationUnit &tu = target.actionManager().translation();
    QList<QWidget *> placed;
    for (QDomElement e = root.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        if (e.tagName() == QLatin1String("toolbar")) {
            QToolBarEntry &entry = entries[e.attribute(QStringLiteral("name"))];
            entry.iconSize = e.attribute(QStringLiteral("iconsize"), QStringLiteral("24")).toInt() * s;
            for (QDomElement b = e.firstChildElement(); !b.isNull(); b = b.nextSiblingElement()) {
                if (b.tagName() == QLatin1String("separator")) {
                    entry.actions.append(nullptr);
                } else if (b.tagName() == QLatin1String("button")) {
                    if (QAction2 *a = target.actionManager().action(b.attribute(QStringLiteral("name")))) {
                        a->setEnabled(true);
                        entry.actions.append(a);
                    }
                }
            }
        } else if (e.tagName() == QLatin1String("panel")) {
            const QString panelName = e.attribute(QStringLiteral("name"));
            const bool editorSide = e.attribute(QStringLiteral("parent"), QStringLiteral("editor"))
                                    == QLatin1String("editor");
            QWidget *page = editorSide ? target.editorPanel(panelName) : target.extraPanel(panelName);
            if (!page)
                continue;
            for (QDomElement c = e.firstChildElement(QStringLiteral("control")); !c.isNull();
                 c = c.nextSiblingElement(QStringLiteral("control"))) {
                const QString controlName = c.attribute(QStringLiteral("name"));
                QInterfaceControl *control = target.control(controlName);
                if (!control)
                    continue;
                int x = 0, y = 0, w = -1, h = -1;
                QRegularExpressionMatch m = pairPattern().match(c.attribute(QStringLiteral("position")));
                if (m.hasMatch()) {
                    x = m.captured(1).toInt() * s;
                    y = m.captured(2).toInt() * s;
                }
                m = pairPattern().match(c.attribute(QStringLiteral("size")));
                if (m.hasMatch()) {
                    w = m.captured(1).toInt() * s;
                    h = m.captured(2).toInt() * s;
                }
                QWidget *widget = control->create(page, controlName, x, y, w, h, tu);
                if (!widget)
                    continue;
                const bool vertical = c.attribute(QStringLiteral("orientation"), QStringLiteral("horizontal"))
                                      != QLatin1String("horizontal");
                if (auto *label = qobject_cast<QLabel *>(widget)) {
                    label->setAlignment(alignment(c.attribute(QStringLiteral("align"), QStringLiteral("left,top"))));
                } else if (auto *button = qobject_cast<QToolButton *>(widget)) {
                    button->setAutoRaise(c.attribute(QStringLiteral("flat")) == QLatin1String("true"));
                    const int icon = c.attribute(QStringLiteral("icon"), QStringLiteral("16")).toInt() * s;
                    button->setIconSize(QSize(icon, icon));
                } else if (auto *bar = qobject_cast<QScrollBar *>(widget)) {
                    bar->setOrientation(vertical ? Qt::Vertical : Qt::Horizontal);
                } else if (auto *frame = qobject_cast<QFrame *>(widget);
                           frame && (frame->frameShape() == QFrame::HLine || frame->frameShape() == QFrame::VLine)) {
                    frame->setFrameShape(vertical ? QFrame::VLine : QFrame::HLine);
                }
                placed.append(widget);
            }
        }
    }
    for (QWidget *w : std::as_const(placed))
        w->show();
    return true;
}
