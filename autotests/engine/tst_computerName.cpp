// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/computerName.h"

#include "engine/benchResults.h"
#include "engine/machineProbe.h"

#include <QtTest>

class tst_computerName : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { qunsetenv("COMPUTERNAME"); }

    void provided_data();
    void provided();
};

void tst_computerName::provided_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("hostName");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("recordName");
    const QString host = QStringLiteral("lab7");
    QTest::newRow("missing") << QByteArray() << host << QByteArray("lab7") << host;
    QTest::newRow("empty") << QByteArray("") << host << QByteArray("lab7") << host;
    QTest::newRow("set") << QByteArray("LAB8") << host << QByteArray("LAB8")
                         << QStringLiteral("LAB8");
    QTest::newRow("no host name") << QByteArray() << QString() << QByteArray()
                                  << QStringLiteral("your machine");
}

void tst_computerName::provided()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, hostName);
    QFETCH(QByteArray, after);
    if (!before.isNull())
        qputenv("COMPUTERNAME", before);
    provideComputerName(hostName);
    QCOMPARE(qgetenv("COMPUTERNAME"), after);
    QCOMPARE(qEnvironmentVariableIsSet("COMPUTERNAME"), !after.isNull());
    QTEST(machineProbe::instance().record().getName(), "recordName");
}

QTEST_APPLESS_MAIN(tst_computerName)
#include "tst_computerName.moc"
