#include "simulator/Oscilloscope.h"

namespace simulator {

// Both families: RANGe is the whole screen of ten vertical divisions, SCALe one of them; the
// time base likewise with the family's number of horizontal divisions. Choices are those that the
// bench's wiring can show.

const OscilloscopeDialect &kvxDialect()
{
    static const OscilloscopeDialect dialect{
        "Varnholt,KVX1044,100101,1.00",
        {
            boolean("CHANnel<4>[:STATe]", false),
            number("CHANnel<4>:SCALe", 1e-3, 10.0, 0.2),
            multiple("CHANnel<4>:RANGe", "CHANnel<4>:SCALe", 10.0),
            number("CHANnel<4>:POSition", -5.0, 5.0, 0.0),
            number("CHANnel<4>:OFFSet", -10.0, 10.0, 0.0),
            choice("CHANnel<4>:COUPling", "DC|DCLimit"),
            choice("CHANnel<4>:TYPE", "SAMPle|PDETect|HRESolution|RMS"),
            choice("CHANnel<4>:BANDwidth", "FULL|B20|B200"),
            number("CHANnel<4>:DIGFilter:CUToff", 1e3, 2e9, 2e9),
            number("TIMebase:SCALe", 1e-6, 50.0, 0.1),
            multiple("TIMebase:RANGe", "TIMebase:SCALe", 10.0),
            number("TIMebase:REFerence", 0.0, 100.0, 50.0),
            number("TIMebase:HORizontal:POSition", -100.0, 100.0, 0.0),
            boolean("ACQuire:POINts:AUTO", true),
            integer("ACQuire:POINts", 1000.0, 500000.0, 20000.0),
            boolean("EXPort:WAVeform:RAW", false),
            boolean("EXPort:WAVeform:INCXvalues", false),
            number("TRIGger<3>:LEVel<5>", -10.0, 10.0, powerUpTriggerLevel),
            boolean("TRIGger<3>:OFFSet:LIMited", false),
            choice("TRIGger<3>:MODE", "AUTO|NORMal|FREerun"),
            boolean("TRIGger<3>:ANEDge:NREJect", false),
            choice("TRIGger<3>:HOLDoff:MODE", "OFF|TIME"),
            number("TRIGger<3>:HOLDoff:TIME", 1e-7, 10.0, 1e-3),
            boolean("TRIGger<3>:OUT:STATe", true),
            boolean("SYSTem:DISPlay:UPDate", true),
        },
        "CHANnel<4>[:STATe]",
        "TRIGger<3>:LEVel<5>",
        "TIMebase:HORizontal:POSition",
        "EXPort:WAVeform:INCXvalues",
        {},
        true,
        10.0};
    return dialect;
}

const OscilloscopeDialect &lpa4004Dialect()
{
    static const OscilloscopeDialect dialect{
        "Varnholt,LPA4004,100102,1.00",
        {
            boolean("CHANnel<4>:STATe", false),
            number("CHANnel<4>:SCALe", 1e-3, 10.0, 0.2),
            multiple("CHANnel<4>:RANGe", "CHANnel<4>:SCALe", 10.0),
            number("CHANnel<4>:POSition", -5.0, 5.0, 0.0),
            number("CHANnel<4>:OFFSet", -10.0, 10.0, 0.0),
            choice("CHANnel<4>:COUPling", "DCLimit|DC"),
            choice("CHANnel<4>:TYPE", "SAMPle|PDETect|HRESolution"),
            choice("CHANnel<4>:BANDwidth", "FULL|B20"),
            number("TIMebase:SCALe", 1e-6, 50.0, 0.1),
            multiple("TIMebase:RANGe", "TIMebase:SCALe", 12.0),
            number("TIMebase:REFerence", 0.0, 100.0, 50.0),
            number("TIMebase:POSition", -100.0, 100.0, 0.0),
            integer("ACQuire:POINts", 12000.0, 12000.0, 12000.0),
            choice("ACQuire:WRATe", "AUTO|MWAVeform|MSAMples"),
            choice("TRIGger:A:TYPE", "EDGE"),
            choice("TRIGger:A:SOURce", "CH1|EXTernal"),
            boolean("TRIGger:A:ENABle", true),
            choice("TRIGger:A:MODE", "AUTO|NORMal"),
            number("TRIGger:A:LEVel<5>", -10.0, 10.0, powerUpTriggerLevel),
            choice("TRIGger:A:EDGE:SLOPe", "POSitive|NEGative"),
            choice("TRIGger:A:EDGE:COUPling", "DC|LFReject"),
            boolean("TRIGger:A:EDGE:FILTer:LPASs", false),
            boolean("TRIGger:B:ENABle", false),
        },
        "CHANnel<4>:STATe",
        "TRIGger:A:LEVel<5>",
        "TIMebase:POSition",
        {},
        // On channel 1 the step rises; no other source is wired to the trigger.
        {{"TRIGger:A:SOURce", 0.0}, {"TRIGger:A:EDGE:SLOPe", 0.0}, {"TRIGger:A:ENABle", 1.0}},
        false,
        12.0};
    return dialect;
}

} // namespace simulator
