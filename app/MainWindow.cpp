#include "app/MainWindow.h"

#include "app/Busy.h"
#include "app/Globals.h"
#include "app/graph/Graph.h"
#include "app/SettingsDirectory.h"
#include "instrument/InstrumentIo.h"
#include "instrument/VisaBinding.h"
#include "measurement/DelayComputation.h"
#include "measurement/MeasurementRun.h"
#include "measurement/TraceFile.h"
#include "measurement/WaveformTransfer.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"
#include "ui_MainWindow.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QRegularExpressionValidator>

namespace {

// Only the text of an Init button says whether its instrument is ready.
const QString notReadyText = QStringLiteral("Init");
const QString readyText = QStringLiteral("Ready");

void showOutcome(QPushButton *button, ViStatus status)
{
    button->setText(status == VI_SUCCESS ? readyText : notReadyText);
}

bool isReady(const QPushButton *button)
{
    return button->text() == readyText;
}

/// Copy the instants into the globals that the graph draws.
void publishInstants(const Instants &instants)
{
    t_src = instants.source;
    t_rf = instants.rf;
    t_snk = instants.sink;
}

} // namespace

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent), ui(std::make_unique<Ui_MainWindow>())
{
    qRegisterMetaType<QVector<double>>("QVector<double>");
    ui->setupUi(this);
    ui->MeasCnt->setValidator(
        new QRegularExpressionValidator(QRegularExpression("[0-9]{0,9}"), ui->MeasCnt));
    setTabOrder(ui->SaveData, ui->Cancel->button(QDialogButtonBox::Cancel));

    if (!iaVisaDll_Init()) {
        QMessageBox::information(this, "VISA Error", "The VISA Library could not be loaded.");
        close();
    }
    if (iaOpenDefaultRM(&resourceManager) != VI_SUCCESS) {
        QMessageBox::information(this, "VISA Error", "VISA master handle not available.");
        close();
    }
    setWindowTitle("Orvanta");

    settingsDirectoryName = settingsDirectory();
    QDir().mkdir(settingsDirectoryName); // makes one level: main() has made the directory above it
    settingsFileName = settingsDirectoryName + '/' +
                       QFileInfo(QCoreApplication::applicationFilePath()).baseName() + ".cfg";
    LoadCfgFile(settingsFileName);

    setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint);
}

MainWindow::~MainWindow()
{
    iaClose(oscilloscope);
    iaClose(spectrumAnalyzer);
    if (ui->VaHdmi->isChecked()) {
        iaClose(videoAnalyzer);
    }
    SaveCfgFile(settingsFileName);
}

int MainWindow::SaveBinFile(const QString &fnam, const QVector<double> &d, ViInt32 cnt)
{
    return saveTrace(fnam, d, cnt);
}

int MainWindow::LoadBinFile(const QString &fnam, QVector<double> *d, ViInt32 *cnt)
{
    const int result = loadTrace(fnam, d, cnt);
    if (result != 0) {
        QMessageBox::warning(this, "File Error", "File not found.");
    }
    return result;
}

int MainWindow::Meas(QVector<double> *d1, QVector<double> *d2, QVector<double> *d3,
                     QVector<double> *t)
{
    SeriesSettings settings;
    settings.oscilloscope = oscilloscope;
    settings.spectrumAnalyzer = spectrumAnalyzer;
    settings.videoAnalyzer = videoAnalyzer;
    settings.oscilloscopeType = chosenOscilloscopeType();
    settings.rfFromOscilloscope = ui->SaIfDem->isChecked();
    settings.measureHdmi = VaHdmi;
    settings.count = ui->MeasCnt->text().toInt();
    settings.save = ui->SaveData->checkState() != Qt::Unchecked;
    settings.filePrefix = settingsDirectoryName;

    // runSeries() knows no globals: they are moved into a record here, and back afterwards. The
    // parameters point to the global traces and to the global t, which the parameter t hides.
    Record record{std::move(*d1), std::move(*d2), std::move(*d3),
                  std::move(*t),  NSmp,           {t_src, t_rf, t_snk}};
    SeriesResults results;
    const int outcome = runSeries(settings, &record, &results);
    *d1 = std::move(record.source);
    *d2 = std::move(record.rf);
    *d3 = std::move(record.sink);
    *t = std::move(record.time);
    NSmp = record.samples;
    publishInstants(record.instants);
    mS2Rf = results[SourceToRf].mean;
    mS2Hd = results[SourceToHdmi].mean;
    mS2Snk = results[SourceToSink].mean;
    return outcome;
}

void MainWindow::CalcDeltaT2(int pts, QVector<double> *d1, QVector<double> *d2, QVector<double> *d3,
                             QVector<double> *t, double *Src2Rf, double *Src2Snk)
{
    const Delays delays = computeDelays(pts, *d1, *d2, *d3, *t, chosenOscilloscopeType());
    publishInstants(delays.instants);
    *Src2Rf = delays.sourceToRf;
    *Src2Snk = delays.sourceToSink;
}

void MainWindow::on_VaHdmi_clicked(bool checked)
{
    enableVideoAnalyzer(checked);
    VaHdmi = checked;
}

void MainWindow::UndimStart()
{
    ui->Start->setEnabled(isReady(ui->OsInit) && isReady(ui->SaInit) &&
                          (!VaHdmi || isReady(ui->VaInit)));
}

void MainWindow::on_OsInit_clicked()
{
    ui->OsInit->setText(notReadyText);
    const Busy busy;
    OscilloscopeSettings settings;
    settings.resource = ui->OsIp->text();
    settings.reset = ui->OsRst->isChecked();
    settings.oscilloscopeType = chosenOscilloscopeType();
    settings.triggerLevel = ui->OsTrgLvl->text().toDouble();
    settings.rfFromOscilloscope = ui->SaIfDem->isChecked();
    showOutcome(ui->OsInit, setUpOscilloscope(resourceManager, settings, &oscilloscope));
    UndimStart();
}

void MainWindow::on_SaInit_clicked()
{
    ui->SaInit->setText(notReadyText);
    const Busy busy;
    SpectrumAnalyzerSettings settings;
    settings.resource = ui->SaIp->text();
    settings.centerFrequency = ui->SaFrq->text().toDouble();
    settings.oscilloscopeType = chosenOscilloscopeType();
    // The panel's Reset and IF/video boxes are not read: the analyzer is never reset, and its IF
    // output, if it has one, is on even when the oscilloscope does not use it.
    showOutcome(ui->SaInit, setUpSpectrumAnalyzer(resourceManager, settings, &spectrumAnalyzer));
    UndimStart();
}

void MainWindow::on_VaInit_clicked()
{
    ui->VaInit->setText(notReadyText);
    const Busy busy;
    VideoAnalyzerSettings settings;
    settings.resource = ui->VaIp->text();
    settings.reset = ui->VaRst->isChecked();
    settings.threshold = ui->VaThres->text().toDouble();
    showOutcome(ui->VaInit,
                setUpVideoAnalyzer(resourceManager, settings, spectrumAnalyzer, &videoAnalyzer));
    UndimStart();
}

void MainWindow::on_Start_clicked()
{
    auto busy = std::make_unique<Busy>();
    Meas(&d1_src, &d2_rf, &d3_snk, &t);
    Graph graph(nullptr);
    busy.reset();
    graph.exec();
}

void MainWindow::on_OsTyp_currentIndexChanged(int index)
{
    OsTyp = index;
}

bool MainWindow::ReadArray(ViSession hdl, const QString &cmd, QVector<double> *arr)
{
    return queryTrace(hdl, cmd, arr);
}

bool MainWindow::IntReadArray(ViSession hdl, QVector<double> *arr)
{
    return readTrace(hdl, arr);
}

void MainWindow::enableVideoAnalyzer(bool enabled)
{
    ui->VaInit->setEnabled(enabled);
    ui->VaIp->setEnabled(enabled);
    ui->VaRst->setEnabled(enabled);
    ui->VaThres->setEnabled(enabled);
    ui->VaThresLbl->setEnabled(enabled);
}
