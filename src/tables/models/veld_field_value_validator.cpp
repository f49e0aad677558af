#include "veld_field_value_validator.h"

#include "kor_field_schema.h"

#include <QIntValidator>
#include <QLocale>

namespace
{
bool int_validator_accepts(int bottom, int top, const QString& text)
{
    QIntValidator validator(bottom, top);
    QString copy = text;
    int position = 0;
    return validator.validate(copy, position) == QValidator::Acceptable;
}

// QIntValidator reads numbers in the default locale, so the value is read the
// same way.
bool to_int(const QString& text, int& out)
{
    bool ok = false;
    out = QLocale().toInt(text, &ok);
    if (!ok)
        out = text.toInt(&ok);
    return ok;
}
} // namespace

QString VELD_FIELD_VALUE_VALIDATOR::strip_line_breaks(const QString& text)
{
    if (!text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r')))
        return text;
    QString stripped = text;
    stripped.remove(QLatin1Char('\n'));
    stripped.remove(QLatin1Char('\r'));
    return stripped;
}

bool VELD_FIELD_VALUE_VALIDATOR::validate(const KOR_FIELD_SCHEMA* field, const QString& raw_text,
                                          QVariant& value, QString& message)
{
    message.clear();
    if (!field)
    {
        value = raw_text;
        return true;
    }
    const QString text = strip_line_breaks(raw_text);
    switch (field->field_type())
    {
    case KFT_YESNO:
        if (text == QLatin1String("0") || text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        {
            value = false;
            return true;
        }
        if (text == QLatin1String("1") || text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        {
            value = true;
            return true;
        }
        message = QStringLiteral("Not a valid boolean value: ") + text;
        return false;

    case KFT_INTEGER:
    {
        if (text.isEmpty() && !field->is_required())
        {
            // No value, as the engine keeps an empty number.
            value = QVariant();
            return true;
        }
        int number = 0;
        if (int_validator_accepts(-2147483647 - 1, 2147483647, text) && to_int(text, number))
        {
            value = number;
            return true;
        }
        message = QStringLiteral("Not a valid integer value: ") + text;
        return false;
    }

    case KFT_UNSIGNED_INTEGER:
    {
        int number = 0;
        if (int_validator_accepts(0, 2147483647, text) && to_int(text, number))
        {
            value = number;
            return true;
        }
        message = QStringLiteral("Not a valid unsigned integer value: ") + text;
        return false;
    }

    case KFT_SINGLE:
    {
        bool ok = false;
        const float number = text.toFloat(&ok);
        if (ok)
        {
            value = number;
            return true;
        }
        message = QStringLiteral("Not a valid float value: ") + text;
        return false;
    }

    case KFT_DOUBLE:
    case KFT_DECIMAL:
    {
        bool ok = false;
        const double number = text.toDouble(&ok);
        if (ok)
        {
            value = number;
            return true;
        }
        message = QStringLiteral("Not a valid double value: ") + text;
        return false;
    }

    case KFT_TEXT:
        value = text;
        return true;

    case KFT_AUTONUMBER:
        message = QStringLiteral("You cannot update autonumber values!");
        return false;

    case KFT_DATE_TIME:
        message = QStringLiteral("Date-time values not yet supported in this front end");
        return false;

    case KFT_UNIQUE_ID:
        message = QStringLiteral("You cannot update unique id values!");
        return false;

    case KFT_CARD64:
    {
        // The range 0 to -1 accepts no text at all: card64 values are not
        // changed by hand.
        bool ok = false;
        const qulonglong number = text.toULongLong(&ok);
        if (int_validator_accepts(0, -1, text) && ok)
        {
            value = number;
            return true;
        }
        message = QStringLiteral("Not a valid card64 value: ") + text;
        return false;
    }

    default:
        return false;
    }
}
