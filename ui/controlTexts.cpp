// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controlTexts.h"

#include "data/httpDatabase.h"
#include "tests/testText.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QTabBar>
#include <QTabWidget>

namespace
{

QString tr(const char *text)
{
    return QCoreApplication::translate("controlTexts", text);
}

struct row {
    const char *widget;
    const char *name; ///< for screen readers; that of the text on the control if null
    const char *text; ///< what it does; none for a null. %1 stands for the online database
};

constexpr row rows[] = {
    {"tabWidget", QT_TRANSLATE_NOOP("controlTexts", "Pages"), nullptr},
    {"benchButton", nullptr,
     QT_TRANSLATE_NOOP("controlTexts",
                       "Runs all tests of the suite one after the other, after a question. Your "
                       "results are kept on this machine, and uploaded unless you disable that.")},
    {"compareButton", nullptr,
     QT_TRANSLATE_NOOP("controlTexts",
                       "Ranks this machine among others, as bars. Choose there what is compared.")},
    {"resolutionComboBox", QT_TRANSLATE_NOOP("controlTexts", "Virtual resolution"),
     QT_TRANSLATE_NOOP("controlTexts",
                       "The size of the frame that the test computes, whatever the size of this "
                       "window. Only results at the first one can be compared, and take part in "
                       "what is shown of this machine.")},
    {"calcComboBox", QT_TRANSLATE_NOOP("controlTexts", "Test"), nullptr},
    {"comboBoxSingleTestTime", QT_TRANSLATE_NOOP("controlTexts", "Test time in seconds"),
     QT_TRANSLATE_NOOP("controlTexts",
                       "How long the single test works, in seconds. A full run always gives each "
                       "test 8 seconds.")},
    {"comboBoxAutoRepeat", QT_TRANSLATE_NOOP("controlTexts", "Auto repeat"),
     QT_TRANSLATE_NOOP("controlTexts",
                       "\"on\" runs the single test again and again until you stop it. Good for "
                       "watching how a result changes as the machine gets warm.")},
    {"singleTestButton", nullptr,
     QT_TRANSLATE_NOOP("controlTexts",
                       "Runs the chosen test alone. Its result is not stored and not uploaded by "
                       "this.")},
    {"groupBox", QT_TRANSLATE_NOOP("controlTexts", "Reference data"), nullptr},
    {"groupBox_2", QT_TRANSLATE_NOOP("controlTexts", "Other"), nullptr},
    {"pushButtonLoadStandardReference",
     QT_TRANSLATE_NOOP("controlTexts", "standard reference data"),
     QT_TRANSLATE_NOOP("controlTexts",
                       "Loads the list of machines to compare with: the newest of the online "
                       "database at %1, or the one that is here. This happens at each start, "
                       "too.")},
    {"pushButtonLoadBetaReference", QT_TRANSLATE_NOOP("controlTexts", "beta reference data"),
     QT_TRANSLATE_NOOP("controlTexts",
                       "Loads the beta list of the online database at %1, with uploads that too "
                       "few others have confirmed so far. Some of it will be wrong; \"standard\" "
                       "loads the usual list again.")},
    {"checkBoxDisableResultUpload", nullptr,
     QT_TRANSLATE_NOOP("controlTexts",
                       "While this is not checked, a full run sends your results to the online "
                       "database at %1: this machine's name, system, processor, threads and "
                       "clock, and the result of each test. Check it to send nothing.")},
    {"comboBoxCompareWindowFontSize", QT_TRANSLATE_NOOP("controlTexts", "Chart font size"),
     QT_TRANSLATE_NOOP("controlTexts",
                       "The size of the letters beside the bars, in points. It takes effect when "
                       "you open the comparison.")},
    {"checkBoxShowIPCResults", nullptr,
     QT_TRANSLATE_NOOP("controlTexts",
                       "Offers \"x/clk\" in the comparison: results per clock cycle. Imprecise, "
                       "since the nominal clock is not the one that a processor works at.")},
    {"checkBoxClocks", nullptr,
     QT_TRANSLATE_NOOP("controlTexts",
                       "Shows the clock of each core over the frames of a test. It cannot be "
                       "chosen: nothing here tells the clocks while a test runs.")},
    {"pushButtonResultsAsText", nullptr,
     QT_TRANSLATE_NOOP("controlTexts",
                       "Lists this machine's results as text. From there they can be copied.")},
    {"pushButtonDeleteUserData", nullptr,
     QT_TRANSLATE_NOOP("controlTexts",
                       "Deletes the stored results of this machine, at once. What was uploaded, "
                       "the runs that are kept and the downloaded lists stay.")},
    {"pushButtonAbout", nullptr,
     QT_TRANSLATE_NOOP("controlTexts", "Says who wrote this and which version it is.")},
    {"pushButtonExit", nullptr,
     QT_TRANSLATE_NOOP("controlTexts", "Ends the program, after a question (Ctrl+Q).")},
    {"pushButtonStop", nullptr,
     QT_TRANSLATE_NOOP("controlTexts",
                       "Ends the test after the present round (Esc). What was measured until then "
                       "counts.")},
    {"debugBox", QT_TRANSLATE_NOOP("controlTexts", "Log"), nullptr},
    {"labelStatus", QT_TRANSLATE_NOOP("controlTexts", "Status"), nullptr},
    {"progressBarRun", QT_TRANSLATE_NOOP("controlTexts", "Progress of the run"), nullptr},
    {"pushButtonDetails", nullptr,
     QT_TRANSLATE_NOOP(
         "controlTexts",
         "Shows all that is known of the latest run and of this machine. What disturbs "
         "a measurement stands there with what to do about it.")},
};

struct buddies {
    const char *label;
    const char *chooser;
};

constexpr buddies labels[] = {
    {"label", "calcComboBox"},
    {"label_2", "resolutionComboBox"},
    {"label_5", "comboBoxCompareWindowFontSize"},
    {"label_6", "comboBoxSingleTestTime"},
    {"label_7", "comboBoxAutoRepeat"},
};

/// A tool tip of one long line would be as wide as the screen.
QString wrapped(const QString &text)
{
    return text.isEmpty() ? QString() : QStringLiteral("<qt>%1</qt>").arg(text.toHtmlEscaped());
}

void describe(QWidget &widget, const QString &text)
{
    widget.setAccessibleDescription(text);
    widget.setToolTip(wrapped(text));
}

QString nameOf(const QWidget &widget, const row &about)
{
    return about.name ? tr(about.name) : widget.property("text").toString().trimmed();
}

} // namespace

void controlTexts::apply(QWidget &window)
{
    for (const row &about : rows) {
        auto *widget = window.findChild<QWidget *>(QString::fromLatin1(about.widget));
        if (!widget)
            continue;
        widget->setAccessibleName(nameOf(*widget, about));
        if (about.text)
            describe(*widget,
                     tr(about.text).replace(QStringLiteral("%1"), httpDatabase::defaultHost()));
    }
    for (const buddies &pair : labels) {
        auto *label = window.findChild<QLabel *>(QString::fromLatin1(pair.label));
        auto *chooser = window.findChild<QComboBox *>(QString::fromLatin1(pair.chooser));
        if (label && chooser)
            label->setBuddy(chooser);
    }
    for (QComboBox *chooser : window.findChildren<QComboBox *>())
        chooser->view()->setAccessibleName(chooser->accessibleName());
    for (QTabWidget *pages : window.findChildren<QTabWidget *>())
        pages->tabBar()->setAccessibleName(tr("Pages"));
}

void controlTexts::describeTests(QComboBox &chooser)
{
    for (int i = 0; i < chooser.count(); ++i)
        chooser.setItemData(i, wrapped(testText(chooser.itemText(i))), Qt::ToolTipRole);
    const auto tellOfChosen = [&chooser] { describe(chooser, testText(chooser.currentText())); };
    QObject::connect(&chooser, qOverload<int>(&QComboBox::currentIndexChanged), &chooser,
                     tellOfChosen);
    tellOfChosen();
}
