// cvar-scope: a simulated oscilloscope that is controlled by remote commands.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>

#include "Cvars.h"
#include "instrument/diagnostics/FaultReporter.h"
#include "instrument/diagnostics/InstrumentLog.h"
#include "instrument/model/Oscilloscope.h"
#include "instrument/remote/BagCommands.h"
#include "instrument/remote/CommandServer.h"
#include "instrument/remote/StandardCommands.h"
#include "instrument/remote/SwitchCommand.h"

namespace {

using cvars::diagnostics::FaultReporter;
using cvars::diagnostics::InstrumentLog;
using cvars::model::Oscilloscope;
using namespace cvars::remote;

ServerHooks HooksOf(InstrumentLog& log) {
  ServerHooks hooks;
  hooks.connected = [&log](const std::string& client) { log.ClientConnected(client); };
  hooks.gone = [&log](const std::string& client) { log.ClientGone(client); };
  hooks.refused = [&log](const std::string& client, const ProgramUnit& unit, ScpiError error) {
    log.SettingRefused(
        client, std::string(unit.header) + std::string(unit.data),
        std::to_string(static_cast<int>(error)) + ",\"" + std::string(ErrorText(error)) + '"');
  };
  return hooks;
}

void RunServer(const CommandTable& table, const Device& device, const ListenAddress& where) {
  const FaultReporter faults;
  InstrumentLog log;
  {
    CommandServer server(table, device, where, HooksOf(log));
    server.StopOnSignals();
    log.Started(where.address, server.Port());
    std::printf(
        "cvar-scope listens on %s port %d\n"
        "Talk to it:  printf '*IDN?\\nCHANNEL1:SCALE 0.5;SCALE?\\n' | nc -N %s %d\n"
        "Ctrl-C ends it.\n",
        where.address.c_str(), server.Port(), where.address.c_str(), server.Port());
    std::fflush(stdout);
    server.Run();
  }  // the last clients are gone
  log.Stopped();
}

int Serve(const ListenAddress& where) {
  Oscilloscope scope;
  CommandTable table;
  AddStandardCommands(table);
  for (const CComPtr<CCvarBag>& bag : scope.Bags()) {
    if (AddBagCommands(table, *bag) != S_OK) {
      std::fputs("cvar-scope: a bag does not name its cvars\n", stderr);
      return 1;
    }
  }
  table.Add("HORizontal:TRACk",
            MakeSwitchCommand([&scope] { return scope.Window().Tracks(); },
                              [&scope](bool on) { scope.Window().SetTracks(on); }));
  const Device device{"Vortana,CVAR-SCOPE,0," CVARS_VERSION, [&scope] { scope.Reset(); }};
  RunServer(table, device, where);
  return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  CLI::App app{"A simulated oscilloscope that is controlled by remote commands"};
  ListenAddress where;
  app.add_option("--listen", where.address, "Address to listen on")->capture_default_str();
  app.add_option("--port", where.port, "TCP port; 0 takes a free one and prints it")
      ->capture_default_str();
  app.set_version_flag("--version", CVARS_VERSION);
  CLI11_PARSE(app, argumentCount, arguments);
  try {
    return Serve(where);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "cvar-scope: %s\n", failure.what());
    return 1;
  }
}
