#pragma once

#include "storage/recorder.h"
#include "storage/resultsreading.h"

#include <QObject>

#include <memory>

class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;
class QWidget;
class QwtNOX;
class noxList;
class recmeas;
class savemeas;
struct FileQuestion;

/**
 * What brings results into files and back: export, recording, reading, and the picture of the plot.
 *
 * It owns the dialogs and the recorder behind the tool buttons, and shows what goes on: the record
 * button tells whether the current instrument is recorded, and is marked while rows of any
 * instrument cannot be written; a bar shows how far a reading is, and stops it.
 */
class ResultsTools : public QObject
{
    Q_OBJECT
public:
    /** What of the form it shows itself on; all are needed, none is owned. */
    struct Display {
        QToolButton *recordButton = nullptr;
        QWidget *readingBar = nullptr; ///< holds the other three; hidden while nothing is read
        QLabel *readingLabel = nullptr;
        QProgressBar *readingProgress = nullptr;
        QPushButton *stopButton = nullptr;
    };

    /** `window` is the parent of all dialogs; registry and plot outlive the tools. */
    ResultsTools(const Display &display, noxList *registry, QwtNOX *plot, QWidget *window);
    ~ResultsTools() override;

    /** A measurement of an instrument (registry index, channel from 0) has come, and the plot does
     *  not have it yet: the round before it may be due to be recorded. */
    void noteMeasurement(int index, quint8 ch) { m_recorder.noteMeasurement(index, ch); }
    /** Shows whether the instrument is recorded; -1: there is none. */
    void refresh(int index);

    /** Lets the user record the instrument, or stop that. */
    void record(int index);
    /** Lets the user export the plot's main instrument, if there is one. */
    void exportMain();
    /** Asks for a file and saves the plot as a picture; the instrument (-1: none) gives the name.
     */
    void savePicture(int index);

    /** Asks for a results file and opens it; false when there is none to read. */
    bool openSaved();
    /** Reads the file that was opened into an instrument, while the program goes on. */
    void readInto(int index);

signals:
    /** What was to be read has been, or the reading has ended early. */
    void resultsRead();

private:
    void connectReading();
    void showFaults();
    void showFileName(const QString &name);
    QString proposedName(int index) const;
    QString chooseFile(const FileQuestion &question);

    Display m_display;
    noxList *m_registry;
    QwtNOX *m_plot;
    QWidget *m_window;
    Recorder m_recorder;
    ResultsReading m_reading;
    std::unique_ptr<savemeas> m_export;
    std::unique_ptr<recmeas> m_recording;
    QString m_directory; ///< where files are read and pictures saved
    QString m_recordTip; ///< of the record button while all is well
    int m_index = -1;    ///< of the instrument on show
};
