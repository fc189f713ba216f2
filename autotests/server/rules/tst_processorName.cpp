// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/processorName.h"

#include "data/builtInList.h"

#include <QtTest>

class tst_processorName : public QObject
{
    Q_OBJECT

private slots:
    void published_data();
    void published();
    void refused_data();
    void refused();
    void keys_data();
    void keys();
    void builtInNames();
};

void tst_processorName::published_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("wanted");
    const auto row = [](const char *title, const QString &name, const QString &wanted) {
        QTest::newRow(title) << name << wanted;
    };
    const QString plain = QStringLiteral("Intel(R) Core(TM) i7-4770 CPU");
    row("plain", plain, plain);
    row("a blank behind, where the programs cut at the sign", plain + QLatin1Char(' '), plain);
    row("runs of blanks", QStringLiteral("  Intel(R)  Core(TM)   i7-4770 CPU "), plain);
    row("another blank", QStringLiteral("Intel(R)\u00A0Core(TM)\u3000i7-4770\u2003CPU"), plain);
    row("wide letters", QStringLiteral("\uFF29ntel(R) Core(TM) i7-\uFF14770 CPU"), plain);
    row("trademark signs", QStringLiteral("Intel\u00AE Core\u2122 i7-4770 CPU"), plain);
    row("a ligature", QStringLiteral("\uFB01ne"), QStringLiteral("fine"));
    row("a joined accent", QStringLiteral("Cafe\u0301 3"), QStringLiteral("Caf\u00E9 3"));
    row("signs", QStringLiteral("Bob's 5000+ w/ R&D, \"fast\" [x] #1"),
        QStringLiteral("Bob's 5000+ w/ R&D, \"fast\" [x] #1"));
    row("Cyrillic", QStringLiteral("\u042D\u043B\u044C\u0431\u0440\u0443\u0441 8"),
        QStringLiteral("\u042D\u043B\u044C\u0431\u0440\u0443\u0441 8"));
    row("Han", QStringLiteral("\u9F99\u82AF 3"), QStringLiteral("\u9F99\u82AF 3"));
    row("like a reserved word", QStringLiteral("Best (tested) unknow"),
        QStringLiteral("Best (tested) unknow"));
    row("128 characters", QString(128, QLatin1Char('x')), QString(128, QLatin1Char('x')));
}

void tst_processorName::published()
{
    QFETCH(QString, name);
    const outcome<QString> found = publishedProcessorName(name);
    QVERIFY2(found, qPrintable(found ? QString() : found.error()));
    QTEST(*found, "wanted");
    QCOMPARE(publishedProcessorName(*found).value(), *found);
}

void tst_processorName::refused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    const auto rows = [](const QString &reason, const QVector<const char *> &names) {
        for (const char *name : names)
            QTest::newRow(name) << QString::fromUtf8(name) << reason;
    };
    rows(QStringLiteral("letters, digits and plain signs"), {"a<b",
                                                             "a>b",
                                                             "a\uFF1Cb",
                                                             "a\tb",
                                                             "a\x7F"
                                                             "b",
                                                             "a\u00ADb",
                                                             "a\u200Bb",
                                                             "a\u200Db",
                                                             "a\u202Eb",
                                                             "a\u2066b",
                                                             "a\uFEFF",
                                                             "a\u3164b",
                                                             "a\u034Fb",
                                                             "a\uFE0F",
                                                             "a\u2028b",
                                                             "i7\u20104770",
                                                             "A\u2800",
                                                             "AMD \U0001F600",
                                                             "x\u0337",
                                                             "\u0661",
                                                             "\uE000"});
    rows(QStringLiteral("of one script"),
         {"\u0456ntel", "AMD Ry\u0437en", "\u0391MD", "\u9F99\u82AF A",
          // All of one script that has the forms of Latin capitals.
          "\uA4EE\uA4DF\uA4D3 7 5800"});
    rows(QStringLiteral("are no part"),
         {"unknown", "Unknown", "UNKNOWN CPU", "un known", "unkn0wn", "\u00FAnknown",
          "some unknown thing", "A (est.)", "A (EST.)", "A(est.)", "A ( e s t . )", "A (est)",
          "A [est.]", "A {Est}", "A \uFF08est.\uFF09", "A (\u00E9st.)", "(est.) A"});
    rows(QStringLiteral("has no name"), {"", " ", "(R)", "CPU", "CPU @ 3 GHz", "(TM) CPU", "@"});
    QTest::newRow("of estimates in Cyrillic")
        << QStringLiteral("\u042D\u043B (\u0435\u0455\u0442.)") << QStringLiteral("are no part");
    QTest::newRow("longer than it seems")
        << QString(100, QChar(0xFDFA)) << QStringLiteral("is too long");
}

void tst_processorName::refused()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    const outcome<QString> found = publishedProcessorName(name);
    QVERIFY2(!found, qPrintable(found.value_or(QString())));
    QVERIFY2(found.error().contains(reason), qPrintable(found.error()));
}

void tst_processorName::keys_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("wanted");
    const QString key = QStringLiteral("intel core i7-4770");
    for (const char *name :
         {"Intel Core i7-4770", "Intel(R) Core(TM) i7-4770 CPU", "Intel(R) Core(TM) i7-4770 CPU ",
          "Intel(R) Core(TM) i7-4770 CPU @ 3.40GHz", "intel(r) core(tm) I7-4770 cpu",
          "Intel\u00AE Core\u2122 i7-4770", "INTEL  CORE i7-4770 CPU@3GHz",
          "Intel CPU Core(TM)i7-4770", "\uFF29ntel(R)CPU Core i7-4770"})
        QTest::newRow(name) << QString::fromUtf8(name) << key;
    QTest::newRow("another") << QStringLiteral("Intel Core i7-4771")
                             << QStringLiteral("intel core i7-4771");
    QTest::newRow("part of a word")
        << QStringLiteral("MyCPU CPUx (RX)") << QStringLiteral("mycpu cpux (rx)");
    QTest::newRow("nothing") << QStringLiteral("(R) CPU @") << QString();
}

void tst_processorName::keys()
{
    QFETCH(QString, name);
    QTEST(processorKey(name), "wanted");
}

/// All known names are published as they are, and no two of them are mixed up.
void tst_processorName::builtInNames()
{
    QMap<QString, QString> names;
    for (const benchResults &machine : builtInMachines()) {
        const QString name = machine.getCpu();
        const outcome<QString> found = publishedProcessorName(name);
        QVERIFY2(found, qPrintable(name));
        QCOMPARE(*found, name);
        const QString before = names.value(processorKey(name), name);
        QCOMPARE(before, name);
        names.insert(processorKey(name), name);
    }
    QCOMPARE(names.size(), 151);
}

QTEST_APPLESS_MAIN(tst_processorName)
#include "tst_processorName.moc"
