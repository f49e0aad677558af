#include "veld_regex_filter_widget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>

namespace
{
QToolButton* tool_button(QWidget* parent, const char* object_name, const QString& text)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(QLatin1String(object_name));
    button->setText(text);
    return button;
}
} // namespace

VELD_RegexFilterWidget::VELD_RegexFilterWidget(const QStringList& column_names, QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("regexFilterWidget"));
    m_expression.setCaseSensitivity(Qt::CaseInsensitive);
    m_expression.setPatternSyntax(QRegExp::RegExp);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);

    m_add_left_bracket = tool_button(this, "addLeftBracketButton", QStringLiteral("+("));
    m_add_left_bracket->setToolTip(QStringLiteral("Add a left bracket to the expression"));
    m_remove_left_bracket = tool_button(this, "removeLeftBracketButton", QStringLiteral("-("));
    m_left_bracket_label = new QLabel(this);
    m_left_bracket_label->setObjectName(QStringLiteral("leftBracketLabel"));

    m_not = new QCheckBox(QStringLiteral("Not"), this);
    m_not->setObjectName(QStringLiteral("notCheckBox"));

    auto* column_label = new QLabel(QStringLiteral("Column:"), this);
    m_column = new QComboBox(this);
    m_column->setObjectName(QStringLiteral("columnComboBox"));
    m_column->addItems(column_names);
    m_column->setToolTip(QStringLiteral("Select the column to filter by."));
    column_label->setBuddy(m_column);

    m_pattern = new QLineEdit(this);
    m_pattern->setObjectName(QStringLiteral("patternLineEdit"));
    m_pattern->setToolTip(
        QStringLiteral("Insert a wildcard, regexp, or plaintext pattern to filter rows by here."));

    auto* syntax_label = new QLabel(QStringLiteral("Syntax:"), this);
    m_syntax = new QComboBox(this);
    m_syntax->setObjectName(QStringLiteral("syntaxComboBox"));
    m_syntax->addItems(
        {QStringLiteral("Regular expression"), QStringLiteral("Wildcard"), QStringLiteral("Fixed string")});
    m_syntax->setToolTip(QStringLiteral("Select the syntax the pattern is using"));
    syntax_label->setBuddy(m_syntax);

    m_case_sensitive = new QCheckBox(QStringLiteral("Case sensitive"), this);
    m_case_sensitive->setObjectName(QStringLiteral("caseSensitiveCheckBox"));
    m_case_sensitive->setToolTip(QStringLiteral(
        "Check this box if you want your pattern to be matched case-sensitively against the records."));

    m_enabled_box = new QCheckBox(QStringLiteral("Enabled"), this);
    m_enabled_box->setObjectName(QStringLiteral("enabledCheckBox"));
    m_enabled_box->setChecked(true);

    m_right_bracket_label = new QLabel(this);
    m_right_bracket_label->setObjectName(QStringLiteral("rightBracketLabel"));
    m_add_right_bracket = tool_button(this, "addRightBracketButton", QStringLiteral("+)"));
    m_add_right_bracket->setToolTip(QStringLiteral("Add a right bracket to the expression"));
    m_remove_right_bracket = tool_button(this, "removeRightBracketButton", QStringLiteral("-)"));

    m_or = new QCheckBox(QStringLiteral("Or"), this);
    m_or->setObjectName(QStringLiteral("orCheckBox"));

    m_delete = new QPushButton(QStringLiteral("Delete"), this);
    m_delete->setObjectName(QStringLiteral("deleteButton"));
    m_delete->setToolTip(QStringLiteral("Delete this filter"));

    layout->addWidget(m_add_left_bracket);
    layout->addWidget(m_remove_left_bracket);
    layout->addWidget(m_left_bracket_label);
    layout->addWidget(m_not);
    layout->addWidget(column_label);
    layout->addWidget(m_column);
    layout->addWidget(m_pattern, 1);
    layout->addWidget(syntax_label);
    layout->addWidget(m_syntax);
    layout->addWidget(m_case_sensitive);
    layout->addWidget(m_enabled_box);
    layout->addWidget(m_right_bracket_label);
    layout->addWidget(m_add_right_bracket);
    layout->addWidget(m_remove_right_bracket);
    layout->addWidget(m_or);
    layout->addWidget(m_delete);

    connect(m_case_sensitive, SIGNAL(stateChanged(int)), this, SLOT(onCsStateChanged(int)));
    connect(m_syntax, SIGNAL(currentIndexChanged(int)), this, SLOT(onSyntaxStateChanged(int)));
    connect(m_pattern, SIGNAL(textChanged(QString)), this, SLOT(onPatternChanged(QString)));
    connect(m_enabled_box, SIGNAL(stateChanged(int)), this, SLOT(onFilteringEnabledStateChanged(int)));
    connect(m_delete, SIGNAL(clicked()), this, SLOT(closeButtonClicked()));
    connect(m_add_left_bracket, SIGNAL(clicked()), this, SLOT(onLeftBracket()));
    connect(m_add_right_bracket, SIGNAL(clicked()), this, SLOT(onRightBracket()));
    connect(m_remove_left_bracket, SIGNAL(clicked()), this, SLOT(onRemoveLeftBracket()));
    connect(m_remove_right_bracket, SIGNAL(clicked()), this, SLOT(onRemoveRightBracket()));
    connect(m_column, SIGNAL(currentIndexChanged(int)), this, SLOT(widgetStateChanged()));
    connect(m_not, SIGNAL(stateChanged(int)), this, SLOT(widgetStateChanged()));
    connect(m_or, SIGNAL(stateChanged(int)), this, SLOT(widgetStateChanged()));

    // The user types the pattern first, once the row is shown.
    QTimer::singleShot(0, m_pattern, SLOT(setFocus()));
}

VELD_RegexFilterWidget::~VELD_RegexFilterWidget() = default;

void VELD_RegexFilterWidget::changed()
{
    if (m_enabled)
        emit filterChanged();
}

void VELD_RegexFilterWidget::show_brackets()
{
    m_left_bracket_label->setText(QString(m_left_brackets, QLatin1Char('(')));
    m_right_bracket_label->setText(QString(m_right_brackets, QLatin1Char(')')));
}

bool VELD_RegexFilterWidget::test(const QString& text) const
{
    if (!m_enabled)
        return true;
    const bool match = m_expression.indexIn(text) != -1;
    return is_inverted() ? !match : match;
}

QString VELD_RegexFilterWidget::expression_text() const
{
    return QString(m_left_brackets, QLatin1Char('(')) + (is_inverted() ? QStringLiteral("NOT ") : QString()) +
           pattern_text() + QString(m_right_brackets, QLatin1Char(')'));
}

bool VELD_RegexFilterWidget::joins_next_with_or() const
{
    return m_or->isChecked();
}

bool VELD_RegexFilterWidget::is_inverted() const
{
    return m_not->isChecked();
}

int VELD_RegexFilterWidget::filter_column() const
{
    return m_column->currentIndex();
}

QString VELD_RegexFilterWidget::pattern_text() const
{
    return m_pattern->text();
}

QString VELD_RegexFilterWidget::column_name() const
{
    return m_column->currentText();
}

void VELD_RegexFilterWidget::set_bracket_and_join_controls_visible(bool visible)
{
    m_add_left_bracket->setVisible(visible);
    m_remove_left_bracket->setVisible(visible);
    m_add_right_bracket->setVisible(visible);
    m_remove_right_bracket->setVisible(visible);
    m_or->setVisible(visible);
}

void VELD_RegexFilterWidget::onCsStateChanged(int checkState)
{
    m_expression.setCaseSensitivity(checkState == Qt::Checked ? Qt::CaseSensitive : Qt::CaseInsensitive);
    changed();
}

void VELD_RegexFilterWidget::onSyntaxStateChanged(int comboIndex)
{
    static const QRegExp::PatternSyntax syntaxes[] = {QRegExp::RegExp, QRegExp::Wildcard,
                                                      QRegExp::FixedString};
    if (comboIndex >= 0 && comboIndex < 3)
        m_expression.setPatternSyntax(syntaxes[comboIndex]);
    changed();
}

void VELD_RegexFilterWidget::onPatternChanged(const QString& pattern)
{
    m_expression.setPattern(pattern);
    changed();
}

void VELD_RegexFilterWidget::onFilteringEnabledStateChanged(int filteringEnabled)
{
    if (filteringEnabled == Qt::Unchecked)
        m_enabled = false;
    else if (filteringEnabled == Qt::Checked)
        m_enabled = true;
    emit filterChanged();
}

void VELD_RegexFilterWidget::closeButtonClicked()
{
    changed();
    emit removeRequest(this);
}

void VELD_RegexFilterWidget::onLeftBracket()
{
    if (m_right_brackets == 0 && m_left_brackets < maximum_brackets)
        ++m_left_brackets;
    show_brackets();
    changed();
}

void VELD_RegexFilterWidget::onRightBracket()
{
    if (m_left_brackets == 0 && m_right_brackets < maximum_brackets)
        ++m_right_brackets;
    show_brackets();
    changed();
}

void VELD_RegexFilterWidget::onRemoveLeftBracket()
{
    if (m_left_brackets > 0)
        --m_left_brackets;
    show_brackets();
    changed();
}

void VELD_RegexFilterWidget::onRemoveRightBracket()
{
    if (m_right_brackets > 0)
        --m_right_brackets;
    show_brackets();
    changed();
}

void VELD_RegexFilterWidget::widgetStateChanged()
{
    changed();
}
