#pragma once

#include "visa/VisaTypes.h"

#include <QMainWindow>
#include <QString>
#include <QVector>

#include <memory>

class Ui_MainWindow;

/// The window of the program: a panel for each instrument, and Start. Its members read the
/// widgets, have the layer below do the work, and show the outcome.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Bind the VISA library and load the settings. Without VISA a box says so, and the window is
    /// usable all the same.
    explicit MainWindow(QWidget *parent = nullptr);

    /// Close the instruments and save the settings.
    ~MainWindow() override;

public slots:
    /// Fill the widgets from a settings file; what it does not hold takes its default. Returns 0.
    int LoadCfgFile(const QString &fnam);
    /// Write the widgets' state to a settings file. Returns 0.
    int SaveCfgFile(const QString &fnam);
    /// Call saveTrace().
    int SaveBinFile(const QString &fnam, const QVector<double> &d, ViInt32 cnt);
    /// Call loadTrace(), with a message box when the file cannot be opened.
    int LoadBinFile(const QString &fnam, QVector<double> *d, ViInt32 *cnt);

private slots:
    // Those without a caller are part of what the window offers by name
    // (QMetaObject::invokeMethod); the on_ slots are found by their names when the form is set up.

    /// Run the series of measurements that the window describes: runSeries().
    int Meas(QVector<double> *d1, QVector<double> *d2, QVector<double> *d3, QVector<double> *t);
    /// Call computeDelays(), into the program-wide instants and the two delays (milliseconds).
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
