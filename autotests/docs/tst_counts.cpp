// SPDX-License-Identifier: GPL-3.0-or-later

// Counts of tests and machines that documents name must be those of the suite and of the list.

#include "data/builtInList.h"
#include "tests/suiteFacts.h"

#include <QFile>
#include <QRegularExpression>
#include <QtTest>

#include <algorithm>

class tst_counts : public QObject
{
    Q_OBJECT

private slots:
    void counts_data();
    void counts();
};

void tst_counts::counts_data()
{
    const std::vector<testFacts> &tests = suiteFacts();
    const auto rotozoomers = std::count_if(tests.begin(), tests.end(), [](const testFacts &test) {
        return QByteArray(test.name).startsWith("rotozoom");
    });
    const QStringList words = {QStringLiteral("no"),    QStringLiteral("one"),
                               QStringLiteral("two"),   QStringLiteral("three"),
                               QStringLiteral("four"),  QStringLiteral("five"),
                               QStringLiteral("six"),   QStringLiteral("seven"),
                               QStringLiteral("eight"), QStringLiteral("nine")};
    const int machines = builtInMachines().size();

    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *name, const char *file, const QString &sentence) {
        QTest::newRow(name) << QString::fromLatin1(file) << sentence;
    };
    row("rotozoomers", "README.md",
        QStringLiteral("a rotozoomer in %1 filter modes").arg(words.value(int(rotozoomers))));
    row("others", "README.md",
        QStringLiteral("a ranking of your machine among %1 others").arg(machines));
    row("machines", "README.md", QStringLiteral("The list of %1 machines").arg(machines));
    row("modelled", "docs/reference-model.md", QStringLiteral("The %1 machines in").arg(machines));
}

void tst_counts::counts()
{
    QFETCH(QString, file);
    QFETCH(QString, sentence);
    QFile document(QStringLiteral(FENNICK_SOURCE_DIR "/%1").arg(file));
    QVERIFY(document.open(QFile::ReadOnly));
    QString text = QString::fromUtf8(document.readAll()).simplified();
    text.remove(QStringLiteral("**"));
    QVERIFY2(text.contains(sentence, Qt::CaseInsensitive),
             qPrintable(QStringLiteral("%1 does not say \"%2\"").arg(file, sentence)));
}

QTEST_APPLESS_MAIN(tst_counts)
#include "tst_counts.moc"
