#pragma once

#include "device/instrumentblocks.h"

#include <QPointer>
#include <QWidget>

#include <memory>
#include <optional>

class ChangeMark;
class optionsNOX8;
struct ReferenceData;
struct ReferenceTexts;

namespace Ui
{
class ReferenceTab;
}

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
