#include "core/model.h"

#include <utility>

#include "core/constant.h"
#include "core/instrument.h"
#include "core/messages.h"

namespace torvane {

ZelModel::ZelModel(std::string name) : name_(std::move(name)), bench_(name_) {}

ZelModel::ZelModel(std::string name, double step, int maxOrder) try : ZelModel(std::move(name)) {
  MakeSolver(step, maxOrder);
} catch (const std::exception&) {
  FatalError("Fault in ZelModel :: ZelModel");
  throw;
}

ZelModel::~ZelModel() = default;

bool ZelModel::RunChunk() {
  solver_->RunUntil(bench_.NextStopTime());
  return bench_.ServiceInstruments();
}

void ZelModel::Reset(ResetKind kind) {
  bench_.ResetVariables(kind);
  solver_->Reset();
  bench_.ResetTimeDriven(kind);
  Derivatives(-1.0);
}

void ZelModel::ResetEverything() {
  DropClassMemory();
  bench_.RestartInstruments();
  Reset(ResetKind::Everything);
}

void ZelModel::RestoreDefaults() {
  for (Constant* constant : bench_.Constants()) constant->RestoreDefault();
}

void ZelModel::Own(std::unique_ptr<Instrument> instrument) {
  added_.push_back(std::move(instrument));
}

void ZelModel::Disown(const Instrument& instrument) {
  std::erase_if(added_, [&](const auto& added) { return added.get() == &instrument; });
}

void ZelModel::MakeSolver(double step, int maxOrder) {
  solver_ = std::make_unique<ZelSolver>(bench_, step, *this, maxOrder);
}

void ZelModel::SetFiles(std::string picture, std::string text) {
  pictureFile_ = std::move(picture);
  textFile_ = std::move(text);
}

}  // namespace torvane
