#pragma once

#include "sample_table.h"

#include <QList>
#include <QString>
#include <QStringList>

// Every table of a sample database, in the order their rows are generated:
// a table's generator may read the rows of the tables before it.
//
// Adding a table is a few lines in one of the sample_tables_*.cpp files:
// describe its fields, say how the game treats it, and give its rows.
class SAMPLE_CATALOGUE
{
public:
    // The tables of the sample game.
    static SAMPLE_CATALOGUE standard();

    void add(const SAMPLE_TABLE& table);
    const QList<SAMPLE_TABLE>& tables() const { return m_tables; }
    const SAMPLE_TABLE* table(const QString& name) const;
    QStringList names() const;

    // Table names ordered so that every table comes after the tables its
    // relationships name (references to itself aside); false on a cycle.
    bool creation_order(QStringList& out, QString& error) const;

    // Faults of the description itself: duplicate names, relationships to
    // unknown tables or fields, a table without key or generator. One
    // message a fault.
    bool check(QStringList& errors) const;

private:
    QList<SAMPLE_TABLE> m_tables;
};
