// SPDX-License-Identifier: GPL-3.0-or-later

// What screen readers say of the main window, its tool tips, and the contrast of what is read.

#include "support/dataDirectory.h"
#include "support/fakeClock.h"
#include "ui/textPage.h"
#include "windowFixture.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTabBar>
#include <QToolTip>
#include <QtTest>

#include <cmath>

namespace
{

/// The window over the suite itself, whose tests are described.
struct realWindow : windowFixture {
    realWindow() : windowFixture([](printHook *printTarget) { return makeSuite(printTarget); }) {}
};

QString spoken(QWidget *widget, QAccessible::Text what)
{
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(widget);
    return access ? access->text(what) : QString();
}

/// The relative luminance of the web's guidelines for contrast (WCAG 2).
double luminance(const QColor &colour)
{
    const auto linear = [](double share) {
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
           + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor &one, const QColor &other)
{
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// Of letters to the ground that they stand on, as they are painted.
double paintedContrast(const QImage &picture)
{
    QMap<QRgb, int> count;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ++count[picture.pixel(x, y)];
    }
    const auto ground = std::max_element(count.cbegin(), count.cend()).key();
    double highest = 1;
    for (auto one = count.cbegin(); one != count.cend(); ++one)
        highest = std::max(highest, contrast(QColor(one.key()), QColor(ground)));
    return highest;
}

constexpr double readable = 4.5;

} // namespace

class tst_mainwindowAccess : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void everythingHasAName();
    void namesSayWhatItIs_data();
    void namesSayWhatItIs();
    void labelsBelongToChoosers_data();
    void labelsBelongToChoosers();
    void optionsAreExplained_data();
    void optionsAreExplained();
    void eachTestIsExplained();
    void contrastOfPalettes_data();
    void contrastOfPalettes();
    void contrastOfMenus();
    void contrastOfPopups();
    void contrastOfToolTips();
    void contrastOfQuestions();
    void disabledLooksDisabled();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_mainwindowAccess::everythingHasAName()
{
    const realWindow f;
    int named = 0;
    for (QWidget *widget : f.window->findChildren<QWidget *>()) {
        if (widget->focusPolicy() == Qt::NoFocus)
            continue;
        const QString what = QString::fromLatin1(widget->metaObject()->className())
                             + QLatin1Char(' ') + widget->objectName();
        QVERIFY2(!spoken(widget, QAccessible::Name).trimmed().isEmpty(), qPrintable(what));
        ++named;
    }
    QVERIFY(named >= 20);
}

void tst_mainwindowAccess::namesSayWhatItIs_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("benchButton") << QStringLiteral("start benchmark");
    QTest::newRow("pushButtonLoadBetaReference") << QStringLiteral("beta reference data");
    QTest::newRow("checkBoxDisableResultUpload") << QStringLiteral("disable result upload");
    QTest::newRow("pushButtonStop") << QStringLiteral("stop");
    QTest::newRow("debugBox") << QStringLiteral("Log");
    QTest::newRow("progressBarRun") << QStringLiteral("Progress of the run");
    QTest::newRow("pushButtonDetails") << QStringLiteral("details");
    QTest::newRow("tabWidget") << QStringLiteral("Pages");
}

void tst_mainwindowAccess::namesSayWhatItIs()
{
    const realWindow f;
    QTEST(spoken(f.find<QWidget>(QTest::currentDataTag()), QAccessible::Name), "name");
}

void tst_mainwindowAccess::labelsBelongToChoosers_data()
{
    QTest::addColumn<QString>("label");
    QTest::newRow("calcComboBox") << QStringLiteral("Test");
    QTest::newRow("resolutionComboBox") << QStringLiteral("Virtual resolution");
    QTest::newRow("comboBoxCompareWindowFontSize") << QStringLiteral("chart font size");
    QTest::newRow("comboBoxSingleTestTime") << QStringLiteral("Test time (s)");
    QTest::newRow("comboBoxAutoRepeat") << QStringLiteral("Auto repeat");
}

/// The name of a chooser is what is chosen in it, on some systems; its label says what for.
void tst_mainwindowAccess::labelsBelongToChoosers()
{
    const realWindow f;
    auto *chooser = f.find<QComboBox>(QTest::currentDataTag());
    QVERIFY(!chooser->accessibleName().isEmpty());
    const auto labels =
        QAccessible::queryAccessibleInterface(chooser)->relations(QAccessible::Label);
    QCOMPARE(labels.size(), 1);
    QTEST(labels.first().first->object()->property("text").toString().trimmed(), "label");
}

void tst_mainwindowAccess::optionsAreExplained_data()
{
    QTest::addColumn<QString>("words");
    const auto add = [](const char *name, const char *words = "") {
        QTest::newRow(name) << QString::fromLatin1(words);
    };
    add("benchButton", "uploaded unless");
    add("compareButton");
    add("resolutionComboBox");
    add("comboBoxSingleTestTime");
    add("comboBoxAutoRepeat");
    add("singleTestButton");
    add("pushButtonLoadStandardReference", FENNICK_EXPECTED_RESULT_HOST);
    add("pushButtonLoadBetaReference", "too few others have confirmed");
    add("checkBoxDisableResultUpload", "database at " FENNICK_EXPECTED_RESULT_HOST ": this");
    add("comboBoxCompareWindowFontSize");
    add("checkBoxShowIPCResults", "Imprecise, since");
    add("checkBoxClocks", "It cannot be chosen: ");
    add("pushButtonResultsAsText");
    add("pushButtonDeleteUserData", "What was uploaded, the runs that are kept");
    add("pushButtonStop", "(Esc)");
    add("pushButtonDetails");
}

/// By the tool tip, and in the same words to a screen reader. Two sentences each.
void tst_mainwindowAccess::optionsAreExplained()
{
    QFETCH(QString, words);
    const realWindow f;
    auto *widget = f.find<QWidget>(QTest::currentDataTag());
    const QString text = spoken(widget, QAccessible::Description);
    QVERIFY2(text.contains(words), qPrintable(text));
    QVERIFY(text.endsWith(QLatin1Char('.')));
    QVERIFY2(text.count(QRegularExpression(QStringLiteral("[.;] [\"A-Z]"))) >= 1, qPrintable(text));
    QCOMPARE(widget->toolTip(), QStringLiteral("<qt>%1</qt>").arg(text.toHtmlEscaped()));
}

void tst_mainwindowAccess::eachTestIsExplained()
{
    const realWindow f;
    auto *tests = f.find<QComboBox>("calcComboBox");
    QCOMPARE(tests->count(), 19);
    for (int i = 0; i < tests->count(); ++i) {
        const QString tip = tests->itemData(i, Qt::ToolTipRole).toString();
        QVERIFY2(tip.contains(QStringLiteral("higher is better.")), qPrintable(tests->itemText(i)));
        QVERIFY(!tests->itemData(i).isValid());
        tests->setCurrentIndex(i);
        QCOMPARE(tests->toolTip(), tip);
        QVERIFY(tip.contains(spoken(tests, QAccessible::Description).toHtmlEscaped()));
    }
}

void tst_mainwindowAccess::contrastOfPalettes_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"debugBox", "labelStatus", "pushButtonDetails", "progressBarRun"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_mainwindowAccess::contrastOfPalettes()
{
    QFETCH(QString, name);
    const realWindow f;
    auto *widget = f.window->findChild<QWidget *>(name);
    widget->ensurePolished();
    const QPalette colours = widget->palette();
    const bool isText = widget->inherits("QTextEdit");
    const double text = contrast(colours.color(isText ? QPalette::Text : widget->foregroundRole()),
                                 colours.color(isText ? QPalette::Base : widget->backgroundRole()));
    QVERIFY2(text >= readable, qPrintable(QString::number(text)));
    if (isText) {
        const double chosen =
            contrast(colours.color(QPalette::HighlightedText), colours.color(QPalette::Highlight));
        QVERIFY2(chosen >= readable, qPrintable(QString::number(chosen)));
    }
}

/// Of the log's own menu: what is chosen, what is not, what cannot be.
void tst_mainwindowAccess::contrastOfMenus()
{
    const realWindow f;
    auto *box = f.find<QTextEdit>("debugBox");
    const std::unique_ptr<QMenu> menu(box->createStandardContextMenu());
    menu->popup(box->mapToGlobal(QPoint()));
    QVERIFY(!menu->actions().isEmpty());
    bool hadDisabled = false;
    QList<QAction *> actions = menu->actions();
    for (QAction *action : qAsConst(actions)) {
        if (action->isSeparator())
            continue;
        const auto shown = [&] { return menu->grab(menu->actionGeometry(action)).toImage(); };
        menu->setActiveAction(nullptr);
        const QImage plain = shown();
        hadDisabled = hadDisabled || !action->isEnabled();
        QVERIFY2(paintedContrast(plain) >= readable, qPrintable(action->text()));
        if (!action->isEnabled())
            continue;
        menu->setActiveAction(action);
        QVERIFY2(paintedContrast(shown()) >= readable, qPrintable(action->text()));
        QVERIFY2(shown().pixel(2, 2) != plain.pixel(2, 2), "the chosen one looks like the others");
    }
    QVERIFY(hadDisabled);
    menu->close();
}

void tst_mainwindowAccess::contrastOfPopups()
{
    const realWindow f;
    f.find<QTabWidget>("tabWidget")->setCurrentIndex(1);
    auto *chooser = f.find<QComboBox>("calcComboBox");
    chooser->showPopup();
    QAbstractItemView *list = chooser->view();
    list->setCurrentIndex(chooser->model()->index(1, 0));
    const auto shown = [&](int index) {
        return list->viewport()
            ->grab(list->visualRect(chooser->model()->index(index, 0)))
            .toImage();
    };
    for (const int index : {1, 2})
        QVERIFY2(paintedContrast(shown(index)) >= readable, qPrintable(QString::number(index)));
    QVERIFY(contrast(shown(1).pixelColor(1, 1), shown(2).pixelColor(1, 1)) >= 3);
    chooser->hidePopup();
}

void tst_mainwindowAccess::contrastOfToolTips()
{
    const realWindow f;
    for (const char *name : {"benchButton", "pushButtonDetails", "debugBox"}) {
        auto *control = f.find<QWidget>(name);
        QToolTip::showText(control->mapToGlobal(QPoint()), QStringLiteral("some words"), control);
        QImage picture;
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (window->inherits("QTipLabel") && window->isVisible())
                picture = window->grab().toImage();
        }
        QVERIFY2(!picture.isNull() && paintedContrast(picture) >= readable, name);
        QToolTip::hideText();
        // Tool tips go slowly, and the next is to be made anew.
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (window->inherits("QTipLabel"))
                delete window;
        }
    }
}

void tst_mainwindowAccess::contrastOfQuestions()
{
    const realWindow f;
    QMap<QString, double> contrasts;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        for (const QWidget *part : box->findChildren<QWidget *>()) {
            const bool isText = part->inherits("QLabel") || part->inherits("QPushButton");
            if (isText && !part->property("text").toString().isEmpty()) {
                contrasts.insert(QString::fromLatin1(part->metaObject()->className()),
                                 contrast(part->palette().color(part->foregroundRole()),
                                          part->palette().color(part->backgroundRole())));
            }
        }
        box->close();
    });
    look.start(5);
    f.button("benchButton")->click();
    f.button("pushButtonAbout")->click();
    QCOMPARE(contrasts.size(), 2);
    for (auto one = contrasts.cbegin(); one != contrasts.cend(); ++one)
        QVERIFY2(*one >= readable, qPrintable(one.key() + QString::number(*one)));
}

void tst_mainwindowAccess::disabledLooksDisabled()
{
    const realWindow f;
    f.find<QTabWidget>("tabWidget")->setCurrentIndex(2);
    const auto textOf = [](QWidget *box) { return box->palette().color(box->foregroundRole()); };
    auto *clocks = f.find<QCheckBox>("checkBoxClocks");
    auto *upload = f.find<QCheckBox>("checkBoxDisableResultUpload");
    clocks->ensurePolished();
    QVERIFY(textOf(clocks) != textOf(upload));
    QVERIFY(contrast(textOf(clocks), clocks->palette().color(clocks->backgroundRole()))
            >= readable);
}

QTEST_MAIN(tst_mainwindowAccess)
#include "tst_mainwindowAccess.moc"
