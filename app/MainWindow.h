#pragma once

#include "visa/VisaTypes.h"

#include <QMainWindow>
#include <QString>
#include <QVector>

#include <memory>

class Ui_MainWindow;

/// The window of the program: a panel for each instrument, and Start. Its members read the widgets,
/// call functions of measurement/ and setup/, and show the outcome.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Bind the VISA library and load the settings. Without VISA two message boxes say so, and no
    /// Init succeeds.
    explicit MainWindow(QWidget *parent = nullptr);

    /// Close the sessions, that of the video analyzer only if its box is checked, and save the
    /// settings.
    ~MainWindow() override;

public slots:
    /// Set the widgets from a settings file, or to their defaults where it has no value. A type
    /// that does not exist leaves its box unchanged. Returns 0.
    int LoadCfgFile(const QString &fnam);
    /// Write the widgets' state to a settings file, if the path is an ordinary file or free.
    /// Returns 0, also when writing fails.
    int SaveCfgFile(const QString &fnam);
    /// Call saveTrace().
    int SaveBinFile(const QString &fnam, const QVector<double> &d, ViInt32 cnt);
    /// Call loadTrace(), and show a message box when the file cannot be opened.
    int LoadBinFile(const QString &fnam, QVector<double> *d, ViInt32 *cnt);

private slots:
    // Qt connects the on_ slots to the widgets by their names. The other slots can be called by
    // name from outside (QMetaObject::invokeMethod). A run does not go through them: Meas() calls
    // runSeries(), which calls queryTrace() and computeDelays() itself. So a change to
    // CalcDeltaT2(), ReadArray() or IntReadArray() does not change what Start does.

    /// Call runSeries() with the window's settings, and return what it returns. The vectors receive
    /// the last record: source, RF, sink, time axis.
    int Meas(QVector<double> *d1, QVector<double> *d2, QVector<double> *d3, QVector<double> *t);
    /// Call computeDelays(), and set the global instants and the two delays (milliseconds).
    void CalcDeltaT2(int pts, QVector<double> *d1, QVector<double> *d2, QVector<double> *d3,
                     QVector<double> *t, double *Src2Rf, double *Src2Snk);
    void on_VaHdmi_clicked(bool checked);
    /// Enable Start when the Init buttons of all instruments in use read "Ready".
    void UndimStart();
    void on_OsInit_clicked();
    void on_SaInit_clicked();
    void on_VaInit_clicked();
    void on_Start_clicked();
    void on_OsTyp_currentIndexChanged(int index);
    /// Call queryTrace().
    bool ReadArray(ViSession hdl, const QString &cmd, QVector<double> *arr);
    /// Call readTrace().
    bool IntReadArray(ViSession hdl, QVector<double> *arr);

private:
    void enableVideoAnalyzer(bool enabled);

    std::unique_ptr<Ui_MainWindow> ui;
    ViSession resourceManager = 0;
    ViSession oscilloscope = 0;
    ViSession spectrumAnalyzer = 0;
    ViSession videoAnalyzer = 0;
    QString settingsDirectoryName;
    QString settingsFileName;
};
