#include "vcs_file_argument.h"

#include <QDir>

QString VCS_FILE_ARGUMENT::clean_path(const QString& path)
{
    QString cleaned = path;
    cleaned.replace(QLatin1Char('\\'), QLatin1Char('/'));
    // "..." must survive cleaning: QDir::cleanPath would not touch it, but
    // keep the cleaning to the separators and "." steps only.
    const bool trailing_slash = cleaned.endsWith(QLatin1Char('/')) && cleaned.size() > 1;
    cleaned = QDir::cleanPath(cleaned);
    if (trailing_slash && !cleaned.endsWith(QLatin1Char('/')))
        cleaned += QLatin1Char('/');
    return cleaned;
}

bool VCS_FILE_ARGUMENT::parse(QString& error, const QString& text, const QString& root,
                              const QString& working_directory)
{
    original = text;
    kind = REVISION_NONE_GIVEN;
    number = 0;

    QString path = text.trimmed();
    if (path.isEmpty())
    {
        error = QStringLiteral("An empty file argument was given");
        return false;
    }

    // The revision is the last '#' or '@' after the last separator.
    const int last_separator =
        std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    const int hash = path.lastIndexOf(QLatin1Char('#'));
    const int at = path.lastIndexOf(QLatin1Char('@'));
    const int marker = std::max(hash, at);
    if (marker > last_separator && marker >= 0)
    {
        const QString revision = path.mid(marker + 1);
        const QChar symbol = path.at(marker);
        path = path.left(marker);
        bool numeric = false;
        const int value = revision.toInt(&numeric);
        if (symbol == QLatin1Char('#'))
        {
            if (revision == QLatin1String("have"))
                kind = REVISION_HAVE;
            else if (revision == QLatin1String("head"))
                kind = REVISION_HEAD;
            else if (revision == QLatin1String("none") || (numeric && value == 0))
                kind = REVISION_DELETED;
            else if (numeric && value > 0)
            {
                kind = REVISION_FILE;
                number = value;
            }
            else
            {
                error = QStringLiteral("%1 - unknown revision '#%2'").arg(text, revision);
                return false;
            }
        }
        else
        {
            if (numeric && value > 0)
            {
                kind = REVISION_CHANGE;
                number = value;
            }
            else if (numeric && value == 0)
                kind = REVISION_DELETED;
            else
            {
                error = QStringLiteral("%1 - only changelist numbers are supported after '@'").arg(text);
                return false;
            }
        }
    }
    if (path.isEmpty())
        path = QStringLiteral("//...");

    const QString clean_root = clean_path(root);
    QString relative;
    if (path.startsWith(QLatin1String("//")))
    {
        relative = path.mid(2);
    }
    else
    {
        QString absolute = path;
        absolute.replace(QLatin1Char('\\'), QLatin1Char('/'));
        if (QDir::isRelativePath(absolute))
            absolute = clean_path(working_directory) + QLatin1Char('/') + absolute;
        absolute = clean_path(absolute);
        if (absolute == clean_root)
            relative = QString();
        else if (absolute.startsWith(clean_root + QLatin1Char('/')) || clean_root == QLatin1String("/"))
            relative = absolute.mid(clean_root == QLatin1String("/") ? 1 : clean_root.size() + 1);
        else
        {
            error = QStringLiteral("%1 - file(s) not in client view.").arg(text);
            return false;
        }
    }
    relative = clean_path(relative);
    if (relative == QLatin1String(".") || relative == QLatin1String("/"))
        relative.clear();
    while (relative.startsWith(QLatin1Char('/')))
        relative.remove(0, 1);
    if (relative.startsWith(QLatin1String("../")) || relative == QLatin1String(".."))
    {
        error = QStringLiteral("%1 - file(s) not in client view.").arg(text);
        return false;
    }
    pattern = relative;
    if (pattern.isEmpty())
        pattern = QStringLiteral("...");

    wildcards = pattern.contains(QLatin1String("...")) || pattern.contains(QLatin1Char('*'));
    QString regex;
    for (int i = 0; i < pattern.size(); ++i)
    {
        if (pattern.midRef(i, 3) == QLatin1String("..."))
        {
            regex += QStringLiteral(".*");
            i += 2;
        }
        else if (pattern.at(i) == QLatin1Char('*'))
            regex += QStringLiteral("[^/]*");
        else
            regex += QRegularExpression::escape(QString(pattern.at(i)));
    }
    expression = QRegularExpression(QRegularExpression::anchoredPattern(regex));
    return true;
}

bool VCS_FILE_ARGUMENT::is_whole_workspace() const
{
    return pattern == QLatin1String("...");
}

QString VCS_FILE_ARGUMENT::fixed_directory() const
{
    int first_wildcard = pattern.size();
    const int dots = pattern.indexOf(QLatin1String("..."));
    const int star = pattern.indexOf(QLatin1Char('*'));
    if (dots >= 0)
        first_wildcard = std::min(first_wildcard, dots);
    if (star >= 0)
        first_wildcard = std::min(first_wildcard, star);
    const QString fixed = pattern.left(first_wildcard);
    if (!wildcards)
    {
        const int slash = fixed.lastIndexOf(QLatin1Char('/'));
        return slash < 0 ? QString() : fixed.left(slash);
    }
    const int slash = fixed.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : fixed.left(slash);
}

bool VCS_FILE_ARGUMENT::matches(const QString& relative_path) const
{
    if (!wildcards)
        return relative_path == pattern;
    return expression.match(relative_path).hasMatch();
}

bool VCS_FILE_ARGUMENT::any_matches(const QVector<VCS_FILE_ARGUMENT>& file_args, const QString& relative_path)
{
    for (const VCS_FILE_ARGUMENT& file_arg : file_args)
    {
        if (file_arg.matches(relative_path))
            return true;
    }
    return false;
}

QString VCS_FILE_ARGUMENT::revision_text() const
{
    switch (kind)
    {
    case REVISION_NONE_GIVEN:
        return QString();
    case REVISION_HAVE:
        return QStringLiteral("#have");
    case REVISION_HEAD:
        return QStringLiteral("#head");
    case REVISION_DELETED:
        return QStringLiteral("#none");
    case REVISION_FILE:
        return QStringLiteral("#%1").arg(number);
    case REVISION_CHANGE:
        return QStringLiteral("@%1").arg(number);
    }
    return QString();
}
