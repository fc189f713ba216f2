// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/buildFacts.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

class tst_buildFacts : public QObject
{
    Q_OBJECT

private slots:
    void ofTheBuild();
    void flags();
    void digest();
};

void tst_buildFacts::ofTheBuild()
{
    const buildFacts facts = thisBuild();
    QCOMPARE(facts.version, QStringLiteral(FENNICK_VERSION));
    QCOMPARE(facts.buildType, QStringLiteral(FENNICK_EXPECTED_BUILD_TYPE));
#ifdef FENNICK_TEST_SANITIZED
    QVERIFY(facts.isSanitized);
#else
    QVERIFY(!facts.isSanitized);
#endif
#if defined(__clang__)
    QVERIFY(facts.compiler.endsWith(QStringLiteral("Clang")));
    QCOMPARE(facts.compilerVersion, QStringLiteral("%1.%2.%3")
                                        .arg(__clang_major__)
                                        .arg(__clang_minor__)
                                        .arg(__clang_patchlevel__));
#elif defined(__GNUC__)
    QCOMPARE(facts.compiler, QStringLiteral("GNU"));
    QCOMPARE(facts.compilerVersion,
             QStringLiteral("%1.%2.%3").arg(__GNUC__).arg(__GNUC_MINOR__).arg(__GNUC_PATCHLEVEL__));
#endif
}

void tst_buildFacts::flags()
{
    const QString flags = thisBuild().measuredFlags;
    const QStringList words = flags.split(QLatin1Char(' '));
    for (const char *policy : {"-O2", "-ffp-contract=off", "-fno-lto"})
        QVERIFY2(words.contains(QLatin1String(policy)), qPrintable(flags));
    // The policy comes after what the build type asks for.
    QVERIFY(words.lastIndexOf(QRegularExpression(QStringLiteral("-O[0-9s]")))
            == words.lastIndexOf(QStringLiteral("-O2")));
    for (const char *other : {"-Wall", "SHELL:", "$<", ";", "\n", "  "})
        QVERIFY2(!flags.contains(QLatin1String(other)), other);
}

/// The program has the digest of the workloads that it was linked with, not of older ones.
void tst_buildFacts::digest()
{
    const QTemporaryDir folder;
    const QString made = folder.filePath(QStringLiteral("digest.cpp"));
    QProcess script;
    script.start(QStringLiteral(FENNICK_CMAKE),
                 {QStringLiteral("-DOBJECTS=" FENNICK_WORKLOAD_OBJECTS)
                      .replace(QLatin1Char('|'), QLatin1Char(';')),
                  QStringLiteral("-DOUTPUT=") + made, QStringLiteral("-DOBJCOPY=" FENNICK_OBJCOPY),
                  QStringLiteral("-DOBJDUMP=" FENNICK_OBJDUMP), QStringLiteral("-P"),
                  QStringLiteral(FENNICK_SOURCE_DIR "/cmake/workloadDigest.cmake")});
    QVERIFY(script.waitForFinished(60'000));
    QCOMPARE(script.exitCode(), 0);
    QFile file(made);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString digest = thisBuild().workloadDigest;
    QVERIFY(file.readAll().contains('"' + digest.toLatin1() + '"'));
    if (!QFile::exists(QStringLiteral(FENNICK_OBJDUMP)))
        QSKIP("this build had no tools for a digest");
    static const QRegularExpression sha256(QStringLiteral("^[0-9a-f]{64}$"));
    QVERIFY2(sha256.match(digest).hasMatch(), qPrintable(digest));
}

QTEST_GUILESS_MAIN(tst_buildFacts)
#include "tst_buildFacts.moc"
