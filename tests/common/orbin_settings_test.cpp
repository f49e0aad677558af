#include "orbin_settings.h"
#include "test_rows.h"

#include <QtCore/QDirIterator>
#include <QtCore/QStandardPaths>
#include <QtTest/QtTest>

using ORBIN_TEST::row;

class ORBIN_SETTINGS_TEST : public QObject
{
    Q_OBJECT

private:
    QString config_home() const
    {
        return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    }

private slots:
    void initTestCase()
    {
        // Run outside ctest, keep away from the user's real settings.
        if (qEnvironmentVariableIsEmpty("ORBIN_TEST_TMP"))
            QStandardPaths::setTestModeEnabled(true);
        else
            QVERIFY2(config_home().startsWith(qEnvironmentVariable("ORBIN_TEST_TMP")),
                     "tests must write settings into their private folder");
    }

    void names_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("organisation");
        QTest::addColumn<QString>("application");
        row("options", "Northfold\\Quill\\Veld\\Options", "Northfold/Quill/Veld", "Options");
        row("trailing separator", "Northfold\\Quill\\Veld\\Connections\\", "Northfold/Quill/Veld",
            "Connections");
        row("doubled separators", "Northfold\\\\Quill\\Veld\\\\Filters", "Northfold/Quill/Veld", "Filters");
        row("forward slashes", "Northfold/Quill/Veld/Searches", "Northfold/Quill/Veld", "Searches");
        row("one component", "Northfold", "Northfold", "");
    }

    void names()
    {
        QFETCH(QString, path);
        QFETCH(QString, organisation);
        QFETCH(QString, application);
        const ORBIN_SETTINGS::NAMES names = ORBIN_SETTINGS::names_for(path);
        QCOMPARE(names.organisation, organisation);
        QCOMPARE(names.application, application);
    }

    void nested_files_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("relative_file");
        row("options", "Northfold\\Quill\\Veld\\Options", "Northfold/Quill/Veld/Options.conf");
        row("tracker import", "Northfold\\Quill\\TrackerFileImport",
            "Northfold/Quill/TrackerFileImport.conf");
    }

    // A value written by one instance is read by another, from a file in the
    // nested folder, and no file anywhere is named with a backslash.
    void nested_files()
    {
        QFETCH(QString, path);
        QFETCH(QString, relative_file);
        {
            ORBIN_SETTINGS writer(path);
            writer.beginGroup(QStringLiteral("tables"));
            writer.setValue(QStringLiteral("cell_back_is_default"), false);
            writer.endGroup();
            writer.setValue(QStringLiteral("DefaultImportLocation"), QStringLiteral("/data/in"));
            QCOMPARE(writer.status(), QSettings::NoError);
        }
        const QString expected = config_home() + QLatin1Char('/') + relative_file;
        QVERIFY2(QFileInfo::exists(expected), qPrintable(expected));

        ORBIN_SETTINGS reader(path);
        QCOMPARE(reader.fileName(), expected);
        QCOMPARE(reader.value(QStringLiteral("tables/cell_back_is_default"), true).toBool(), false);
        QCOMPARE(reader.value(QStringLiteral("DefaultImportLocation")).toString(),
                 QStringLiteral("/data/in"));

        QDirIterator it(config_home(), QDir::AllEntries | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (it.hasNext())
        {
            it.next();
            QVERIFY2(!it.fileName().contains(QLatin1Char('\\')), qPrintable(it.filePath()));
        }
    }

    // "Northfold\Quill\Veld" is a concern of its own and also the folder of
    // the Veld concerns; QSettings would read it as their fallback. It must not.
    void concerns_do_not_see_each_other()
    {
        {
            ORBIN_SETTINGS parent(QStringLiteral("Northfold\\Quill\\Veld"));
            parent.setValue(QStringLiteral("DefaultWGetPath"), QStringLiteral("/from/parent"));
            ORBIN_SETTINGS sibling(QStringLiteral("Northfold\\Quill\\Veld\\DiffSelectionDialog"));
            sibling.setValue(QStringLiteral("DefaultWGetPath"), QStringLiteral("/from/sibling"));
        }
        ORBIN_SETTINGS settings(QStringLiteral("Northfold\\Quill\\Veld\\EncyclopediaGetDialog"));
        QVERIFY(!settings.contains(QStringLiteral("DefaultWGetPath")));
        QCOMPARE(settings.value(QStringLiteral("DefaultWGetPath"), QString()).toString(), QString());
        QVERIFY(settings.allKeys().isEmpty());
    }
};

QTEST_GUILESS_MAIN(ORBIN_SETTINGS_TEST)
#include "orbin_settings_test.moc"
