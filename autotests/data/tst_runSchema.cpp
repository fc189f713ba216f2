// SPDX-License-Identifier: GPL-3.0-or-later

// What is written satisfies docs/run.schema.json, what is refused does not, and docs/json.md
// describes all of it. The judge is a validator of others: Debian's python3-jsonschema.

#include "data/runJson.h"

#include "damagedRuns.h"
#include "runFixtures.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

const QString documents = QStringLiteral(FENNICK_SOURCE_DIR "/docs/");

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

/// The names of all properties in a schema.
void collectNames(const QJsonValue &node, QSet<QString> &names)
{
    const QJsonObject object = node.toObject();
    for (auto member = object.begin(); member != object.end(); ++member) {
        if (member.key() == QLatin1String("properties")) {
            const QStringList keys = member->toObject().keys();
            names.unite(QSet<QString>(keys.begin(), keys.end()));
        }
        collectNames(*member, names);
    }
}

} // namespace

class tst_runSchema : public QObject
{
    Q_OBJECT

private slots:
    void written_data();
    void written();
    void damaged();
    void documented();

private:
    /// What the validator says about a file with @p content.
    QString validate(const QStringList &options, const QList<QByteArray> &contents);
};

QString tst_runSchema::validate(const QStringList &options, const QList<QByteArray> &contents)
{
    const QTemporaryDir directory;
    QStringList arguments =
        QStringList(QStringLiteral(FENNICK_SOURCE_DIR "/autotests/data/validateRuns.py"));
    arguments += options;
    arguments += documents + QStringLiteral("run.schema.json");
    for (int i = 0; i < contents.size(); ++i) {
        QFile file(directory.filePath(QString::number(i)));
        if (!file.open(QFile::WriteOnly) || file.write(contents.at(i)) != contents.at(i).size())
            return QStringLiteral("cannot write");
        file.close();
        arguments += file.fileName();
    }
    QProcess validator;
    validator.start(QStringLiteral(FENNICK_PYTHON), arguments);
    if (!validator.waitForFinished(60'000) || validator.exitCode() != 0)
        return QStringLiteral("the validator failed: ")
               + QString::fromUtf8(validator.readAllStandardError());
    return QString::fromUtf8(validator.readAllStandardOutput())
        .remove(directory.path() + QLatin1Char('/'));
}

void tst_runSchema::written_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("full") << toJson(fullRun());
    QTest::newRow("nothing known") << toJson({});
    QTest::newRow("repeated") << toJson(repeatedRun(3));
    runRecord stopped = repeatedRun(1);
    stopped.isStopped = true;
    stopped.tests.back().rounds.resize(1);
    stopped.tests.back().end = testEnd::stopped;
    QTest::newRow("stopped") << toJson(stopped);
    runRecord bare;
    bare.tests.resize(1);
    QTest::newRow("a test without anything") << toJson(bare);
    runRecord busy = repeatedRun(1);
    busy.context.atStart.loadAverage = 5;
    busy.tests[0].rounds[0].fine = std::chrono::minutes(10);
    busy.tests[0].rounds[7].fine *= 2;
    QTest::newRow("with remarks") << toJson(busy);
}

void tst_runSchema::written()
{
    QFETCH(QByteArray, json);
    QCOMPARE(validate({QStringLiteral("--known")}, {json}), QStringLiteral("taken 0\n"));
}

void tst_runSchema::damaged()
{
    QList<QByteArray> contents;
    for (const damagedRun &run : damagedRuns())
        contents.append(run.content);
    const QStringList found = validate({}, contents).split(QLatin1Char('\n'));
    QCOMPARE(found.size(), contents.size() + 1);
    int i = 0;
    for (const damagedRun &run : damagedRuns()) {
        const bool isRefused = found.at(i).startsWith(QStringLiteral("refused"));
        QVERIFY2(isRefused == run.isSeenBySchema, run.name);
        ++i;
    }
}

void tst_runSchema::documented()
{
    QSet<QString> names;
    collectNames(
        QJsonDocument::fromJson(contentOf(documents + QStringLiteral("run.schema.json"))).object(),
        names);
    QVERIFY(names.size() > 50);
    const QString text = QString::fromUtf8(contentOf(documents + QStringLiteral("json.md")));
    for (const QString &name : qAsConst(names)) {
        QVERIFY2(text.contains(QLatin1Char('`') + name + QLatin1Char('`')),
                 qPrintable(name + QStringLiteral(" is not in docs/json.md")));
    }
}

QTEST_APPLESS_MAIN(tst_runSchema)
#include "tst_runSchema.moc"
