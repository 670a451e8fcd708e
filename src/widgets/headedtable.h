#pragma once

#include <QSet>
#include <QTableWidget>

/**
 * A table whose row 0 is its header, made of cell widgets, which stays in sight above the scrolled
 * rows; the keyboard does in it what the mouse does.
 *
 * The arrow keys move the current cell, which never lies in the header and is scrolled to when Tab
 * leads to the table. Space, Return and the Menu key (or Shift+F10) are announced with the place
 * where they were pressed.
 */
class HeadedTable : public QTableWidget
{
    Q_OBJECT
public:
    explicit HeadedTable(QWidget *parent = nullptr);

    /** The columns in which a click, and so Return too, opens a menu. */
    void setMenuColumns(const QSet<int> &columns) { m_menuColumns = columns; }

    /** Says what the columns are called, which row 0 shows: of each cell, and in row 0 itself. */
    void sayTitles(const QStringList &titles);
    /** Says what a row is called; an equal name changes nothing. */
    void sayRow(int row, const QString &name);

    /** Height at which all rows are seen at once. */
    int neededHeight() const;
    /** The height for which it asks its layout; at first the smallest that it may have. */
    void setPreferredHeight(int height);
    /** As wide as it may be, where it may not be wider at will. */
    QSize sizeHint() const override;

    /** Scrolls until a row is seen, one just added included. */
    void showRow(int row);
    /** The header covers nothing of what has been scrolled to. */
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;

signals:
    // None of them comes from the header; rows and columns are those of the table.

    /** Space: what the row stands for is to be shown, or hidden. */
    void showToggled(int row);
    /** Ctrl+A: what all rows stand for is to be shown, or hidden. */
    void allToggled();
    /** Return: the row is chosen. */
    void chosen(int row);
    /** The Menu key, or Return in a column that opens a menu. */
    void menuWanted(int row, int column);

protected:
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool viewportEvent(QEvent *event) override;

protected slots:
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void rowsInserted(const QModelIndex &parent, int first, int last) override;
    void updateEditorGeometries() override;

private:
    void leaveHeader();
    void pinHeader();

    QSet<int> m_menuColumns;
    int m_preferredHeight = 0;
};
