#include "kor_field_schema.h"
#include "veld_field_relationship_text.h"
#include "veld_field_value_validator.h"

#include <QtTest>

namespace
{
KOR_FIELD_SCHEMA field_of(int type, bool required)
{
    KOR_FIELD_SCHEMA field;
    field.initialise(false, QStringLiteral("Field"), KOR_FIELD_TYPE(type), required, QVariant(), -1, false,
                     QString(), QString(), QString(), false, false, false);
    return field;
}
} // namespace

// What a typed cell becomes in each field type, and the messages of refusals.
class VELD_FIELD_VALUE_VALIDATOR_TEST : public QObject
{
    Q_OBJECT

private slots:
    void validates_by_type_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("required");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("message");

        QTest::newRow("yesno 1") << 1 << false << "1" << true << QVariant(true) << "";
        QTest::newRow("yesno TRUE") << 1 << false << "TRUE" << true << QVariant(true) << "";
        QTest::newRow("yesno with line break") << 1 << false << "tr\nue" << true << QVariant(true) << "";
        QTest::newRow("yesno yes") << 1 << false << "yes" << false << QVariant()
                                   << "Not a valid boolean value: yes";

        QTest::newRow("integer lowest")
            << 2 << false << "-2147483648" << true << QVariant(int(-2147483647 - 1)) << "";
        QTest::newRow("integer too big")
            << 2 << false << "2147483648" << false << QVariant() << "Not a valid integer value: 2147483648";
        QTest::newRow("integer empty") << 2 << false << "" << true << QVariant() << "";
        QTest::newRow("integer empty required") << 2 << true << "\n"
                                                << false << QVariant() << "Not a valid integer value: ";
        QTest::newRow("integer split by CR LF") << 2 << false << "1\r\n2" << true << QVariant(12) << "";

        QTest::newRow("unsigned negative")
            << 3 << false << "-1" << false << QVariant() << "Not a valid unsigned integer value: -1";
        QTest::newRow("unsigned empty")
            << 3 << false << "" << false << QVariant() << "Not a valid unsigned integer value: ";

        QTest::newRow("single") << 4 << false << "1.5" << true << QVariant(1.5f) << "";
        QTest::newRow("double") << 5 << false << "-2.25" << true << QVariant(-2.25) << "";
        QTest::newRow("double empty")
            << 5 << false << "" << false << QVariant() << "Not a valid double value: ";
        QTest::newRow("decimal as double") << 6 << false << "3" << true << QVariant(3.0) << "";

        QTest::newRow("text keeps blanks, drops line breaks")
            << 7 << false << " a\r\nb " << true << QVariant(QStringLiteral(" ab ")) << "";
        QTest::newRow("autonumber") << 8 << false << "5" << false << QVariant()
                                    << "You cannot update autonumber values!";
        QTest::newRow("date-time") << 9 << false << "2020-01-01" << false << QVariant()
                                   << "Date-time values not yet supported in this front end";
        QTest::newRow("unique id") << 10 << false << "5" << false << QVariant()
                                   << "You cannot update unique id values!";
        // The card64 range accepts nothing: such cells are not changed by hand.
        QTest::newRow("card64") << 11 << false << "5" << false << QVariant() << "Not a valid card64 value: 5";
        QTest::newRow("type outside the enumeration") << 12 << false << "5" << false << QVariant() << "";
    }

    void validates_by_type()
    {
        QFETCH(int, type);
        QFETCH(bool, required);
        QFETCH(QString, text);
        QFETCH(bool, valid);
        QFETCH(QVariant, value);
        QFETCH(QString, message);

        const KOR_FIELD_SCHEMA field = field_of(type, required);
        QVariant out;
        QString out_message = QStringLiteral("left over");
        QCOMPARE(VELD_FIELD_VALUE_VALIDATOR::validate(&field, text, out, out_message), valid);
        QCOMPARE(out_message, message);
        if (valid)
        {
            QCOMPARE(out, value);
            QCOMPARE(out.type(), value.type());
        }
    }

    void field_without_schema_takes_any_text()
    {
        QVariant out;
        QString message;
        QVERIFY(VELD_FIELD_VALUE_VALIDATOR::validate(nullptr, QStringLiteral("any\ntext"), out, message));
        QCOMPARE(out, QVariant(QStringLiteral("any\ntext")));
    }

    void relationship_text_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<bool>("depends");
        QTest::addColumn<int>("lookup_fields");
        QTest::addColumn<bool>("referenced");
        QTest::addColumn<QString>("text");

        QTest::newRow("plain field") << "" << false << 0 << false
                                     << "<b>Field</b> field  has no lookups or relationships";
        QTest::newRow("foreign key with one lookup field")
            << "" << true << 1 << false
            << "<b>Field</b> field <br>... depends on:<br>  <i>Units.Unit_Key</i><br>"
               "<br>... looks up values from:<br>  <i>Units</i>.<i>Name</i><br>";
        QTest::newRow("foreign key with two lookup fields")
            << "" << true << 2 << false
            << "<b>Field</b> field <br>... depends on:<br>  <i>Units.Unit_Key</i><br>"
               "<br>... looks up values from:<br>  <i>Units</i>.{<i>Name:Class</i>}<br>";
        QTest::newRow("referenced key")
            << "Key" << false << 0 << true
            << "<b>Field</b> field <br><br>Key<br><br>... is a dependency of:<br>  <i>Armies.Leader</i><br>"
               "  <i>Armies.Second</i><br>  <i>Towns.Governor</i><br>"
               "<br>... looked up by:<br>  <i>Armies</i>.{<i>Leader:Second</i>}<br>  "
               "<i>Towns</i>.<i>Governor</i><br>";
    }

    void relationship_text()
    {
        QFETCH(QString, description);
        QFETCH(bool, depends);
        QFETCH(int, lookup_fields);
        QFETCH(bool, referenced);
        QFETCH(QString, text);

        KOR_FIELD_SCHEMA field = field_of(7, false);
        if (depends)
            field.add_dependency(QStringLiteral("Units"), QStringLiteral("Unit_Key"));
        if (lookup_fields > 0)
        {
            const QStringList names =
                QStringList{QStringLiteral("Name"), QStringLiteral("Class")}.mid(0, lookup_fields);
            QVERIFY(field.set_metafield_value(KMF_LOOKUP_FIELDS, QVariant(names)));
        }
        if (referenced)
        {
            const QList<QPair<QString, QString>> users{
                {"Armies", "Leader"}, {"Armies", "Second"}, {"Towns", "Governor"}};
            field.set_dependents(users);
            field.set_looked_up_by(users);
        }
        QCOMPARE(VELD_FIELD_RELATIONSHIP_TEXT::build(field, description), text);
    }
};

QTEST_APPLESS_MAIN(VELD_FIELD_VALUE_VALIDATOR_TEST)
#include "veld_field_value_validator_test.moc"
