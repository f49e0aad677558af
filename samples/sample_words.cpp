#include "sample_words.h"

#include "sample_random.h"

#include <QRegularExpression>

namespace
{
QStringList split(const char* words)
{
    return QString::fromUtf8(words).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

SAMPLE_CULTURE make_culture(const char* key, const char* prefix, const char* adjective, const char* climate,
                            const char* forenames, const char* surnames, const char* starts, const char* ends)
{
    SAMPLE_CULTURE result;
    result.key = QString::fromUtf8(key);
    result.prefix = QString::fromUtf8(prefix);
    result.adjective = QString::fromUtf8(adjective);
    result.climate = QString::fromUtf8(climate);
    result.forenames = split(forenames);
    result.surnames = split(surnames);
    result.place_starts = split(starts);
    result.place_ends = split(ends);
    return result;
}

// English, French, German, Spanish, Polish, Russian, Chinese.
const char* const DICTIONARY[][7] = {
    {"republic", "République", "Republik", "República", "Republika", "Республика", "共和国"},
    {"empire", "Empire", "Reich", "Imperio", "Imperium", "Империя", "帝国"},
    {"kingdom", "Royaume", "Königreich", "Reino", "Królestwo", "Королевство", "王国"},
    {"league", "Ligue", "Bund", "Liga", "Liga", "Лига", "联盟"},
    {"rebels", "Rebelles", "Rebellen", "Rebeldes", "Rebelianci", "Мятежники", "叛军"},
    {"clans", "Clans", "Clans", "Clanes", "Klany", "Кланы", "氏族"},
    {"horde", "Horde", "Horde", "Horda", "Orda", "Орда", "部落"},
    {"khanate", "Khanat", "Khanat", "Kanato", "Chanat", "Ханство", "汗国"},
    {"sky", "Céleste", "Himmels", "Celeste", "Niebiański", "Небесное", "天空"},
    {"ashen", "Cendrée", "Aschene", "Cenicienta", "Popielna", "Пепельная", "灰烬"},
    {"temple", "Temple", "Tempel", "Templo", "Świątynia", "Храм", "神殿"},
    {"satrapy", "Satrapie", "Satrapie", "Satrapía", "Satrapia", "Сатрапия", "总督辖区"},
    {"isles", "Îles", "Inseln", "Islas", "Wyspy", "Острова", "群岛"},
    {"jarldom", "Jarlat", "Jarltum", "Jarlado", "Jarlostwo", "Ярлство", "雅尔领"},
    {"kin", "Lignée", "Sippe", "Linaje", "Ród", "Род", "族"},
    {"raven", "Corbeau", "Raben", "Cuervo", "Kruka", "Ворона", "渡鸦"},
    {"nomarchs", "Nomarques", "Nomarchen", "Nomarcas", "Nomarchowie", "Номархи", "诺姆长"},
    {"of", "de", "von", "de", "z", "", "的"},
    {"the", "le", "der", "el", "", "", ""},
    {"and", "et", "und", "y", "i", "и", "和"},
    {"spearmen", "Lanciers", "Speerträger", "Lanceros", "Włócznicy", "Копейщики", "长矛兵"},
    {"swordsmen", "Épéistes", "Schwertkämpfer", "Espadachines", "Miecznicy", "Мечники", "剑士"},
    {"archers", "Archers", "Bogenschützen", "Arqueros", "Łucznicy", "Лучники", "弓箭手"},
    {"slingers", "Frondeurs", "Schleuderer", "Honderos", "Procarze", "Пращники", "投石兵"},
    {"javelinmen", "Javeliniers", "Speerwerfer", "Jabalineros", "Oszczepnicy", "Метатели дротиков", "标枪兵"},
    {"riders", "Cavaliers", "Reiter", "Jinetes", "Jeźdźcy", "Всадники", "骑手"},
    {"lancers", "Lanciers montés", "Lanzenreiter", "Lanceros montados", "Lansjerzy", "Уланы", "枪骑兵"},
    {"cavalry", "Cavalerie", "Kavallerie", "Caballería", "Kawaleria", "Конница", "骑兵"},
    {"heavy", "lourde", "Schwere", "pesada", "Ciężka", "Тяжёлая", "重"},
    {"light", "légers", "Leichte", "ligeros", "Lekcy", "Лёгкие", "轻"},
    {"guard", "Garde", "Garde", "Guardia", "Gwardia", "Гвардия", "卫队"},
    {"veteran", "Vétérans", "Veteranen", "Veteranos", "Weterani", "Ветераны", "老兵"},
    {"elite", "d'élite", "Elite", "de élite", "Elitarni", "Элитные", "精锐"},
    {"shield", "Bouclier", "Schild", "Escudo", "Tarcza", "Щит", "盾"},
    {"wall", "Mur", "Wall", "Muro", "Mur", "Стена", "墙"},
    {"axe", "Hache", "Axt", "Hacha", "Topór", "Топор", "斧"},
    {"warriors", "Guerriers", "Krieger", "Guerreros", "Wojownicy", "Воины", "战士"},
    {"horse", "Cheval", "Pferde", "Caballo", "Konni", "Конные", "马"},
    {"bodyguard", "Garde du corps", "Leibwache", "Guardaespaldas", "Straż przyboczna", "Телохранители",
     "卫士"},
    {"general's", "du général", "des Generals", "del general", "generała", "полководца", "将军"},
    {"ship", "Navire", "Schiff", "Barco", "Okręt", "Корабль", "船"},
    {"fire", "Feu", "Feuer", "Fuego", "Ognia", "Огненный", "火"},
    {"barracks", "Caserne", "Kaserne", "Cuartel", "Koszary", "Казармы", "兵营"},
    {"stables", "Écuries", "Ställe", "Establos", "Stajnie", "Конюшни", "马厩"},
    {"market", "Marché", "Markt", "Mercado", "Targ", "Рынок", "市场"},
    {"walls", "Murailles", "Mauern", "Murallas", "Mury", "Стены", "城墙"},
    {"harbour", "Port", "Hafen", "Puerto", "Port", "Гавань", "港口"},
    {"mine", "Mine", "Mine", "Mina", "Kopalnia", "Рудник", "矿"},
    {"library", "Bibliothèque", "Bibliothek", "Biblioteca", "Biblioteka", "Библиотека", "图书馆"},
    {"fields", "Champs", "Felder", "Campos", "Pola", "Поля", "田地"},
    {"great", "Grand", "Große", "Gran", "Wielka", "Великий", "大"},
    {"army", "armée", "Armee", "ejército", "armia", "армия", "军队"},
    {"battle", "bataille", "Schlacht", "batalla", "bitwa", "битва", "战斗"},
    {"enemy", "ennemi", "Feind", "enemigo", "wróg", "враг", "敌人"},
    {"enemies", "ennemis", "Feinde", "enemigos", "wrogowie", "враги", "敌人"},
    {"gold", "or", "Gold", "oro", "złoto", "золото", "黄金"},
    {"trade", "commerce", "Handel", "comercio", "handel", "торговля", "贸易"},
    {"city", "cité", "Stadt", "ciudad", "miasto", "город", "城市"},
    {"men", "hommes", "Männer", "hombres", "ludzie", "люди", "人"},
    {"brave", "Brave", "Tapfer", "Valiente", "Odważny", "Храбрый", "勇敢"},
    {"coward", "Lâche", "Feigling", "Cobarde", "Tchórz", "Трус", "懦夫"},
    {"my", "mon", "mein", "mi", "mój", "мой", "我的"},
    {"lord", "seigneur", "Herr", "señor", "panie", "господин", "大人"},
    {"we", "nous", "wir", "nosotros", "my", "мы", "我们"},
    {"must", "devons", "müssen", "debemos", "musimy", "должны", "必须"},
    {"our", "nos", "unsere", "nuestros", "nasze", "наши", "我们的"},
    {"is", "est", "ist", "es", "jest", "", "是"},
    {"a", "un", "ein", "un", "", "", "一"},
    {"to", "à", "zu", "a", "do", "к", "到"},
    {"with", "avec", "mit", "con", "z", "с", "与"},
    {"in", "en", "in", "en", "w", "в", "在"},
    {"for", "pour", "für", "para", "dla", "для", "为"},
    {"armies", "armées", "Armeen", "ejércitos", "armie", "армии", "军队"},
    {"units", "unités", "Einheiten", "unidades", "oddziały", "отряды", "部队"},
    {"recruit", "recrutez", "rekrutiert", "reclutad", "rekrutuj", "набирайте", "招募"},
    {"more", "plus", "mehr", "más", "więcej", "больше", "更多"},
};
const char* const LANGUAGES[] = {"fr", "de", "es", "pl", "ru", "zh"};

QString transliterate_to_cyrillic(const QString& word)
{
    static const QMap<QString, QString> letters = {
        {"a", "а"}, {"b", "б"}, {"c", "к"},  {"d", "д"}, {"e", "е"}, {"f", "ф"}, {"g", "г"},
        {"h", "х"}, {"i", "и"}, {"j", "й"},  {"k", "к"}, {"l", "л"}, {"m", "м"}, {"n", "н"},
        {"o", "о"}, {"p", "п"}, {"q", "к"},  {"r", "р"}, {"s", "с"}, {"t", "т"}, {"u", "у"},
        {"v", "в"}, {"w", "в"}, {"x", "кс"}, {"y", "ы"}, {"z", "з"}};
    QString result;
    for (const QChar c : word)
    {
        const QString lower = QString(c.toLower());
        const auto it = letters.constFind(lower);
        if (it == letters.constEnd())
        {
            result += c;
            continue;
        }
        result += c.isUpper() ? it->toUpper() : *it;
    }
    return result;
}
} // namespace

const SAMPLE_WORDS& SAMPLE_WORDS::instance()
{
    static const SAMPLE_WORDS words;
    return words;
}

SAMPLE_WORDS::SAMPLE_WORDS()
{
    m_cultures = {
        make_culture(
            "aurelian", "aur", "Aurelian", "temperate",
            "Marcus Gaius Lucius Titus Aulus Decimus Quintus Servius Publius Livia Aurelia Cornelia Octavia",
            "Valerius Corvinus Fabius Sabinus Calvus Varro Nerva Rufus Silanus Albinus Marcellus",
            "Aur Vel Cast Mar Ost Pal Tarr Ven Lav Nov Sab", "elia enum ium ona entum ara ovia ica ae"),
        make_culture("khar", "khar", "Kharid", "steppe",
                     "Temur Batu Orda Kesh Altan Subo Yesun Arslan Bora Khulan Sorgha",
                     "Borjan Tayar Keret Naimur Ongir Merkai", "Khar Ulan Tor Sar Bay Alt Kash Oy Tem",
                     "gol tai kent uul dar ash yn"),
        make_culture("veshan", "vesh", "Veshani", "arid",
                     "Arshak Daryan Mithran Roshan Vahram Tirdad Anahit Shirin Parvin Kaveh",
                     "Suren Karin Mihran Ispah Varaz Zikan", "Vesh Pars Ardh Ctes Hama Sus Zar Nis",
                     "an ipolis adan iran estan ur"),
        make_culture("norl", "norl", "Norlund", "frozen",
                     "Hakon Sigurd Eirik Torvald Ragna Astrid Brynja Ulf Gunnar Sven Ingrid Halvard",
                     "Hakonsson Ironhand Greycloak Ulfsson Stormborn Ravenwing",
                     "Nor Skag Hald Vest Tromm Frey Ask Hel", "heim vik fjord by stad holm"),
        make_culture("thalassan", "thal", "Thalassan", "temperate",
                     "Nikias Demetrios Theron Kallias Xanthe Ione Phaedra Lysandros Alkmene Kleon",
                     "Andronides Kallistos Pheidon Meleagros Theodoros", "Thal Kor Mel Nax Ery Lyk Ast Pyr",
                     "os ia eion ousa ene ion"),
        make_culture("sundari", "sund", "Sundari", "tropical",
                     "Akhenu Nefru Khasek Sitre Taharqen Imhet Meritet Rensab Tiye",
                     "Ankhu Sobekhet Menkaru Djedef Horiset", "Sun Keme Thebu Abyd Mer Nek Hier",
                     "et opolis ira akh un"),
    };
    for (const auto& entry : DICTIONARY)
    {
        QMap<QString, QString> translations;
        for (int language = 0; language < 6; ++language)
            translations.insert(QString::fromLatin1(LANGUAGES[language]),
                                QString::fromUtf8(entry[language + 1]));
        m_dictionary.insert(QString::fromUtf8(entry[0]), translations);
    }
}

const SAMPLE_CULTURE* SAMPLE_WORDS::culture(const QString& key) const
{
    for (const SAMPLE_CULTURE& culture : m_cultures)
        if (culture.key == key)
            return &culture;
    return nullptr;
}

const SAMPLE_CULTURE* SAMPLE_WORDS::culture_of_prefix(const QString& prefix) const
{
    for (const SAMPLE_CULTURE& culture : m_cultures)
        if (culture.prefix == prefix)
            return &culture;
    return nullptr;
}

QString SAMPLE_WORDS::forename(const SAMPLE_CULTURE& culture, SAMPLE_RANDOM& random) const
{
    return random.pick(culture.forenames);
}

QString SAMPLE_WORDS::person(const SAMPLE_CULTURE& culture, SAMPLE_RANDOM& random) const
{
    return forename(culture, random) + QLatin1Char(' ') + random.pick(culture.surnames);
}

QString SAMPLE_WORDS::place(const SAMPLE_CULTURE& culture, SAMPLE_RANDOM& random) const
{
    static const QStringList joins = {QString(),           QStringLiteral("a"), QStringLiteral("e"),
                                      QStringLiteral("i"), QStringLiteral("o"), QString()};
    QString name = random.pick(culture.place_starts);
    const QString end = random.pick(culture.place_ends);
    const QString join = random.pick(joins);
    // No doubled vowel where the parts meet.
    if (!join.isEmpty() && !end.isEmpty() && !QStringLiteral("aeiou").contains(end.at(0)))
        name += join;
    return name + end;
}

QString SAMPLE_WORDS::slug(const QString& text)
{
    static const QRegularExpression not_word(QStringLiteral("[^a-z0-9]+"));
    QString result = text.toLower().replace(QLatin1Char('\''), QString());
    result.replace(not_word, QStringLiteral("_"));
    while (result.startsWith(QLatin1Char('_')))
        result.remove(0, 1);
    while (result.endsWith(QLatin1Char('_')))
        result.chop(1);
    return result;
}

QStringList SAMPLE_WORDS::translated_languages()
{
    return {QStringLiteral("fr"), QStringLiteral("de"), QStringLiteral("es"),
            QStringLiteral("pl"), QStringLiteral("ru"), QStringLiteral("zh")};
}

QString SAMPLE_WORDS::language_name(const QString& code)
{
    static const QMap<QString, QString> names = {
        {"all", "All languages"}, {"en", "English"}, {"fr", "Français"}, {"de", "Deutsch"},
        {"es", "Español"},        {"pl", "Polski"},  {"ru", "Русский"},  {"zh", "中文"}};
    return names.value(code, code);
}

QString SAMPLE_WORDS::translate_word(const QString& word, const QString& language) const
{
    const auto it = m_dictionary.constFind(word.toLower());
    if (it != m_dictionary.constEnd())
        return it->value(language);
    if (language == QLatin1String("ru"))
        return transliterate_to_cyrillic(word);
    return word;
}

QString SAMPLE_WORDS::translate(const QString& english, const QString& language) const
{
    static const QRegularExpression words(QStringLiteral("[A-Za-z']+"));
    QString result;
    int last = 0;
    QRegularExpressionMatchIterator it = words.globalMatch(english);
    while (it.hasNext())
    {
        const QRegularExpressionMatch match = it.next();
        result += english.mid(last, match.capturedStart() - last);
        result += translate_word(match.captured(), language);
        last = match.capturedEnd();
    }
    result += english.mid(last);
    // Words the language leaves out leave doubled blanks behind.
    result = result.simplified();
    if (language == QLatin1String("zh"))
        result.remove(QLatin1Char(' '));
    return result;
}
