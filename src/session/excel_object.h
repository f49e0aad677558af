#pragma once

#include "eo_style_properties.h"

#include <QString>

#include <memory>

// Spreadsheet access for script export and tracker import. Declared with the
// contract; built by the spreadsheet work (platform/sheets). Every operation
// returns a STATUS: zero is failure, anything else success. Rows and columns
// count from 1. Needs Qt Gui (colours).
class EXCEL_OBJECT
{
public:
    typedef int STATUS;

    EXCEL_OBJECT();
    explicit EXCEL_OBJECT(const QString& file_name);
    ~EXCEL_OBJECT();
    EXCEL_OBJECT(const EXCEL_OBJECT&) = delete;
    EXCEL_OBJECT& operator=(const EXCEL_OBJECT&) = delete;

    STATUS init();
    STATUS create_book(const QString& path);
    STATUS open_book(const QString& path);
    STATUS select_sheet(int index);
    STATUS select_sheet(const QString& name);
    STATUS read_cell(int row, int column, QString& out);
    STATUS read_cell_formula(int row, int column, QString& out);
    STATUS write_cell(int row, int column, const QString& text);
    STATUS write_cell_formula(int row, int column, const QString& formula);
    STATUS get_cell_style(EO_STYLE_PROPERTIES& out, int row, int column);
    STATUS set_cell_style(const EO_STYLE_PROPERTIES& properties, int row, int column, int rows, int columns);
    STATUS save_book();
    STATUS quit();
    // Why the last failing operation failed.
    QString last_error() const;

private:
    class PRIVATE;
    std::unique_ptr<PRIVATE> d;
};
