#pragma once

#include "device/instrumentblocks.h"

#include <QPointer>
#include <QVector>
#include <QWidget>

#include <memory>
#include <optional>

class ChangeMark;
class QTableWidget;
class QTableWidgetItem;
class QwtNOX;
class optionsNOX8;
struct ReferenceTexts;

namespace Ui
{
class ReferenceTab;
class ShiftTab;
} // namespace Ui

// The tabs of what an instrument measures by. What is typed in one reaches the image when it is
// taken or written; the buttons of both are connected by the dialog that holds them.

/**
 * The tab of reference resistors and reference voltage ("Опоры").
 *
 * What is typed reaches the image when take() is called; the image then announces it, and whoever
 * hears that calls refresh(). The tab's buttons are connected by the dialog that holds it.
 */
class ReferenceTab : public QWidget
{
    Q_OBJECT
public:
    explicit ReferenceTab(QWidget *parent = nullptr);
    ~ReferenceTab() override;

    /** The instrument whose reference data are shown; null for none. Not owned; it may go at any
     *  time. What has been typed for another one is dropped. */
    void setImage(optionsNOX8 *image);
    /** Shows the image's reference data; what is being typed at the moment stays. */
    void refresh();
    /** Marks where the image differs from `held`, what the instrument is known to hold (nothing is
     *  known: no mark). The texts stay as they are. */
    void setHeld(const std::optional<ReferenceData> &held);
    /** Takes all entered numbers into the image, or none and says so. */
    bool take();
    /** Asks, takes, and asks for the block to be written. */
    void write();
    /** Locks the controls behind the unchecked warning. */
    void lock();
    /** Whether there is anything to be changed (the type is known): enables the warning group. */
    void setAvailable(bool available);
    /** Enables the button that removes the instrument from the database. */
    void setRemovable(bool removable);

private:
    ReferenceTexts enteredTexts() const;
    void showT0(const QString &text);
    void showMarks();

    std::unique_ptr<Ui::ReferenceTab> m_ui;
    ChangeMark *m_t0Mark; ///< child of its field
    QPointer<optionsNOX8> m_image;
    std::optional<ReferenceData> m_held;
};

/**
 * The tab of zero shifts ("Смещение <0>"), which only extended instruments have.
 *
 * What is typed reaches the image when write() is called. The tab's buttons are connected by the
 * dialog that holds it.
 */
class ShiftTab : public QWidget
{
    Q_OBJECT
public:
    explicit ShiftTab(QWidget *parent = nullptr);
    ~ShiftTab() override;

    /** The instrument whose shifts are shown; null for none. Not owned; it may go at any time. What
     *  has been typed for another one is dropped. */
    void setImage(optionsNOX8 *image);
    /** Shows the image's shifts, if the model is extended; what is being typed at the moment
     *  stays. */
    void refresh();
    /** Marks where the image differs from `held`, what the instrument is known to hold (nothing is
     *  known: no mark). The texts stay as they are. */
    void setHeld(const std::optional<ZeroShifts> &held);
    /** Asks, takes all entered numbers into the image up to the first that is none, and asks for
     *  the block to be written, or says that something is wrong. */
    void write();
    /** Locks the controls behind the unchecked warning. */
    void lock();
    /** Follows the model of the instrument: it tells which shifts there are, and whether anything
     *  can be changed (the type is known). */
    void followModel();
    /** Shows the group of range shifts and the button that zeroes channels, or hides them. */
    void setServiceVisible(bool visible);
    /** Subtracts the latest readings of the plot from the channel shifts, if the model can and the
     *  plot has its eight channels. The plot may be null. */
    void zeroChannels(const QwtNOX *plot, int qwtIndex);

signals:
    /** write() has taken numbers into the image, all or those before a wrong one. */
    void taken();

private:
    QVector<QTableWidget *> tables() const;
    QVector<QTableWidgetItem *> entryCells() const;
    void clearCells();
    void showChannelTables();
    void showShifts();
    void showMarks();

    std::unique_ptr<Ui::ShiftTab> m_ui;
    QPointer<optionsNOX8> m_image;
    std::optional<ZeroShifts> m_held;
    quint32 m_shownType = 0; ///< the model whose shifts are shown
};
