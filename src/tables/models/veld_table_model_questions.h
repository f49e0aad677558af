#pragma once

#include <QMap>
#include <QSet>
#include <QString>

// The questions the table data model puts to the user while it checks an
// edit. The widget layer answers them with message boxes and the cascade
// dialog; tests answer them from a script.
class VELD_TABLE_MODEL_QUESTIONS
{
public:
    virtual ~VELD_TABLE_MODEL_QUESTIONS();

    // A warning box titled "Data Invalid" with the text.
    virtual void warn_data_invalid(const QString& text) = 0;

    // The cascade question for a changed value that other records use:
    // `references` maps each referring table to the keys of its records that
    // use the value. True when the user chose to update them with the edit;
    // `apply_to_all` receives whether the user asked to keep that answer for
    // the rest of a paste or multi-cell edit.
    virtual bool ask_cascade_update(const QMap<QString, QSet<QString>>& references, bool& apply_to_all) = 0;
};
