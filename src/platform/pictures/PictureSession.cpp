#include "platform/pictures/PictureSession.h"

#include <utility>

namespace {

thread_local PictureSession* gCurrent = nullptr;

}  // namespace

PictureSession* PictureSession::current() {
  return gCurrent;
}

void PictureSession::begin() {
  spent_ = std::chrono::microseconds(0);
  helperFailure_ = PictureFailure::none;
  leftOut_.clear();
  leftOutDraws_.clear();
}

void PictureSession::leaveOut(const void* draw, LeftOutPicture picture) {
  if (leftOutDraws_.insert(draw).second) leftOut_.push_back(std::move(picture));
}

PictureSessionScope::PictureSessionScope(PictureSession& session)
    : outer_(std::exchange(gCurrent, &session)), cache_(session.cache()) {}

PictureSessionScope::~PictureSessionScope() {
  gCurrent = outer_;
}
