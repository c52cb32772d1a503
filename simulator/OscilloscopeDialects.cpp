#include "simulator/Oscilloscope.h"

namespace simulator {

OscilloscopeDialect kvxDialect()
{
    return {
        "Varnholt,KVX1044,100101,1.00",
        10.0,
        true,
        boolean("CHANnel<4>[:STATe]", false),
        number("TIMebase:HORizontal:POSition", -100.0, 100.0, 0.0, "S"),
        integer("ACQuire:POINts", 1000.0, 500000.0, 20000.0),
        number("TRIGger<3>:LEVel<5>", -10.0, 10.0, powerUpTriggerLevel, "V"),
        {},
        {
            choice("CHANnel<4>:COUPling", {"DC", "DCLimit"}),
            choice("CHANnel<4>:TYPE", {"SAMPle", "PDETect", "HRESolution", "RMS"}),
            choice("CHANnel<4>:BANDwidth", {"FULL", "B20", "B200"}),
            number("CHANnel<4>:DIGFilter:CUToff", 1e3, 2e9, 2e9, "HZ"),
            boolean("ACQuire:POINts:AUTO", true),
            boolean("EXPort:WAVeform:RAW", false),
            boolean("EXPort:WAVeform:INCXvalues", false),
            boolean("TRIGger<3>:OFFSet:LIMited", false),
            choice("TRIGger<3>:MODE", {"AUTO", "NORMal", "FREerun"}),
            boolean("TRIGger<3>:ANEDge:NREJect", false),
            choice("TRIGger<3>:HOLDoff:MODE", {"OFF", "TIME"}),
            number("TRIGger<3>:HOLDoff:TIME", 1e-7, 10.0, 1e-3, "S"),
            boolean("TRIGger<3>:OUT:STATe", true),
            boolean("SYSTem:DISPlay:UPDate", true),
        },
    };
}

OscilloscopeDialect lpa4004Dialect()
{
    return {
        "Varnholt,LPA4004,100102,1.00",
        12.0,
        false,
        boolean("CHANnel<4>:STATe", false),
        number("TIMebase:POSition", -100.0, 100.0, 0.0, "S"),
        integer("ACQuire:POINts", 12000.0, 12000.0, 12000.0),
        number("TRIGger:A:LEVel<5>", -10.0, 10.0, powerUpTriggerLevel, "V"),
        {
            // Only the source on channel 1 is wired to the trigger, and its signal rises.
            choice("TRIGger:A:SOURce", {"CH1", "EXTernal"}),
            choice("TRIGger:A:EDGE:SLOPe", {"POSitive", "NEGative"}),
            boolean("TRIGger:A:ENABle", true),
        },
        {
            choice("CHANnel<4>:COUPling", {"DCLimit", "DC"}),
            choice("CHANnel<4>:TYPE", {"SAMPle", "PDETect", "HRESolution"}),
            choice("CHANnel<4>:BANDwidth", {"FULL", "B20"}),
            choice("ACQuire:WRATe", {"AUTO", "MWAVeform", "MSAMples"}),
            choice("TRIGger:A:TYPE", {"EDGE"}),
            choice("TRIGger:A:MODE", {"AUTO", "NORMal"}),
            choice("TRIGger:A:EDGE:COUPling", {"DC", "LFReject"}),
            boolean("TRIGger:A:EDGE:FILTer:LPASs", false),
            boolean("TRIGger:B:ENABle", false),
        },
    };
}

} // namespace simulator
