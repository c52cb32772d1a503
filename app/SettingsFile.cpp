// The members of MainWindow that load and save the settings, a file in INI format.

#include "app/Globals.h"
#include "app/MainWindow.h"
#include "instrument/NumberText.h"
#include "ui_MainWindow.h"

#include <QFileInfo>
#include <QSettings>

namespace {

const char *const osAddressKey = "Oscilloscope/IP Address";
const char *const osResetKey = "Oscilloscope/Reset";
const char *const osTypeKey = "Oscilloscope/Type";
const char *const osTriggerLevelKey = "Oscilloscope/Trigger Level";
const char *const saAddressKey = "Spectrum Analyzer/IP Address";
const char *const saResetKey = "Spectrum Analyzer/Reset";
const char *const saCenterFrequencyKey = "Spectrum Analyzer/Center Frequency";
const char *const saIfDemodKey = "Spectrum Analyzer/IF Demod";
const char *const vaAddressKey = "Video Analyzer/IP Address";
const char *const vaResetKey = "Video Analyzer/Reset";
const char *const vaThresholdKey = "Video Analyzer/Threshold";
const char *const vaHdmiDelayKey = "Video Analyzer/HDMI Delay";
const char *const saveDataKey = "General/Save Data";

void loadText(const QSettings &settings, const char *key, const char *initial, QLineEdit *edit)
{
    edit->setText(settings.value(key, initial).toString());
    edit->setCursorPosition(0); // shows the start of a long resource string
}

void loadNumber(const QSettings &settings, const char *key, double initial, QLineEdit *edit)
{
    edit->setText(numberText(settings.value(key, initial).toDouble()));
}

/// A check state is stored as a number. All numbers but 0 count as checked, and so does "true".
void loadCheck(const QSettings &settings, const char *key, QCheckBox *box)
{
    box->setChecked(settings.value(key, false).toBool());
}

/// The box does not change when it has no such index.
void loadIndex(const QSettings &settings, const char *key, int initial, QComboBox *box)
{
    bool isNumber = false;
    const int index = settings.value(key, initial).toInt(&isNumber);
    if (isNumber && index >= 0 && index < box->count()) {
        box->setCurrentIndex(index);
    }
}

/// Returns whether the path is an ordinary file or free. Opening a FIFO would never end.
bool isUsable(const QString &fnam)
{
    const QFileInfo info(fnam);
    return info.isFile() || !info.exists();
}

} // namespace

int MainWindow::LoadCfgFile(const QString &fnam)
{
    const QString nothing = ":/"; // a folder without settings, which gives all defaults
    const QSettings settings(isUsable(fnam) ? fnam : nothing, QSettings::IniFormat);
    loadText(settings, osAddressKey, "TCPIP0::scope::INSTR", ui->OsIp);
    loadCheck(settings, osResetKey, ui->OsRst);
    loadIndex(settings, osTypeKey, 1, ui->OsTyp);
    OsTyp = ui->OsTyp->currentIndex();
    loadNumber(settings, osTriggerLevelKey, 0.027, ui->OsTrgLvl);
    loadText(settings, saAddressKey, "TCPIP0::analyzer::INSTR", ui->SaIp);
    loadCheck(settings, saResetKey, ui->SaRst);
    loadNumber(settings, saCenterFrequencyKey, 5.192e9, ui->SaFrq);
    loadCheck(settings, saIfDemodKey, ui->SaIfDem);
    loadText(settings, vaAddressKey, "TCPIP0::video::INSTR", ui->VaIp);
    loadCheck(settings, vaResetKey, ui->VaRst);
    loadNumber(settings, vaThresholdKey, 35.0, ui->VaThres);
    VaHdmi = settings.value(vaHdmiDelayKey, false).toBool();
    loadCheck(settings, saveDataKey, ui->SaveData);

    ui->VaHdmi->setChecked(VaHdmi);
    enableVideoAnalyzer(VaHdmi);
    return 0;
}

int MainWindow::SaveCfgFile(const QString &fnam)
{
    if (!isUsable(fnam)) {
        return 0;
    }
    QSettings settings(fnam, QSettings::IniFormat);
    settings.setValue(osAddressKey, ui->OsIp->text());
    settings.setValue(osResetKey, static_cast<int>(ui->OsRst->checkState()));
    settings.setValue(osTypeKey, OsTyp);
    settings.setValue(osTriggerLevelKey, ui->OsTrgLvl->text().toDouble());
    settings.setValue(saAddressKey, ui->SaIp->text());
    settings.setValue(saResetKey, static_cast<int>(ui->SaRst->checkState()));
    settings.setValue(saCenterFrequencyKey, ui->SaFrq->text().toDouble());
    settings.setValue(saIfDemodKey, static_cast<int>(ui->SaIfDem->checkState()));
    settings.setValue(vaAddressKey, ui->VaIp->text());
    settings.setValue(vaResetKey, static_cast<int>(ui->VaRst->checkState()));
    settings.setValue(vaThresholdKey, ui->VaThres->text().toDouble());
    settings.setValue(vaHdmiDelayKey, VaHdmi);
    settings.setValue(saveDataKey, static_cast<int>(ui->SaveData->checkState()));
    return 0;
}
