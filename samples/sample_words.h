#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class SAMPLE_RANDOM;

// One people of the sample world, with the words their names are made of.
struct SAMPLE_CULTURE
{
    QString key;       // "aurelian"
    QString prefix;    // key prefix of what belongs to them: "aur"
    QString adjective; // "Aurelian"
    QString climate;
    QStringList forenames;
    QStringList surnames;
    QStringList place_starts;
    QStringList place_ends;
};

// The words of the sample world: its peoples, how their people and places
// are named, and a small dictionary that gives the translators' languages
// something believable to hold.
class SAMPLE_WORDS
{
public:
    static const SAMPLE_WORDS& instance();

    const QList<SAMPLE_CULTURE>& cultures() const { return m_cultures; }
    const SAMPLE_CULTURE* culture(const QString& key) const;
    const SAMPLE_CULTURE* culture_of_prefix(const QString& prefix) const;

    QString forename(const SAMPLE_CULTURE& culture, SAMPLE_RANDOM& random) const;
    QString person(const SAMPLE_CULTURE& culture, SAMPLE_RANDOM& random) const;
    QString place(const SAMPLE_CULTURE& culture, SAMPLE_RANDOM& random) const;

    // "Heavy Cavalry (Elite)" -> "heavy_cavalry_elite".
    static QString slug(const QString& text);

    // The languages texts are translated into ("en" and "all" aside), with
    // their names as the languages table shows them.
    static QStringList translated_languages();
    static QString language_name(const QString& code);
    // A translation of an English text, word by word from the dictionary;
    // proper names stay (and are transliterated for Russian).
    QString translate(const QString& english, const QString& language) const;

private:
    SAMPLE_WORDS();
    QString translate_word(const QString& word, const QString& language) const;

    QList<SAMPLE_CULTURE> m_cultures;
    // English word (lower case) to language code to translation.
    QMap<QString, QMap<QString, QString>> m_dictionary;
};
