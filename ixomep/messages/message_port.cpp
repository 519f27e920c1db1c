// Registration of ports, and the table of the well-known names.
#include "ixomep/messages/message_port.h"

#include "ixomep/messages/message_port_manager.h"

IxoMessagePort::IxoMessagePort(const char* name) : name_(name) {
  IxoMessagePortManager::Instance().AddMessagePort(name_, this);
}

IxoMessagePort::~IxoMessagePort() {
  // Meant: also when another port has taken the name over.
  IxoMessagePortManager::Instance().RemoveMessagePort(name_);
}

namespace {

// Arrays, not literals: the address of each is its own.
constexpr char kAcquisition[] = "Acquisition";
constexpr char kIxoScript[] = "IxoScript";
constexpr char kAnalysis[] = "Analysis";
constexpr char kApplication[] = "Application";
constexpr char kIql[] = "IQL";
constexpr char kCore[] = "Core";
constexpr char kCoreUi[] = "CoreUI";
constexpr char kDocumentation[] = "Documentation";
constexpr char kEvaluation[] = "Evaluation";
constexpr char kImportExport[] = "ImportExport";
constexpr char kModeling[] = "Modeling";
constexpr char kSimulation[] = "Simulation";
constexpr char kUserMgt[] = "UserMgt";
constexpr char kDrawing[] = "Drawing";
constexpr char kDb[] = "DB";
constexpr char kExplorer[] = "Explorer";

}  // namespace

const char* IxoMessagePort::Acquisition() noexcept { return kAcquisition; }
const char* IxoMessagePort::IxoScript() noexcept { return kIxoScript; }
const char* IxoMessagePort::Analysis() noexcept { return kAnalysis; }
const char* IxoMessagePort::Application() noexcept { return kApplication; }
const char* IxoMessagePort::IQL() noexcept { return kIql; }
const char* IxoMessagePort::Core() noexcept { return kCore; }
const char* IxoMessagePort::CoreUI() noexcept { return kCoreUi; }
const char* IxoMessagePort::Documentation() noexcept { return kDocumentation; }
const char* IxoMessagePort::Evaluation() noexcept { return kEvaluation; }
const char* IxoMessagePort::ImportExport() noexcept { return kImportExport; }
const char* IxoMessagePort::Modeling() noexcept { return kModeling; }
const char* IxoMessagePort::Simulation() noexcept { return kSimulation; }
const char* IxoMessagePort::UserMgt() noexcept { return kUserMgt; }
const char* IxoMessagePort::Drawing() noexcept { return kDrawing; }
const char* IxoMessagePort::DB() noexcept { return kDb; }
const char* IxoMessagePort::Explorer() noexcept { return kExplorer; }
