#include "host/filters/FilterMatrixSource.hpp"

#include "host/filters/MatrixText.hpp"

namespace Quoril::Core {

FilterMatrixSource::FilterMatrixSource(const std::string& name)
    : Filter(name, true),
      pin_(kMatrixPin, this),
      matrix_(kMatrix, getPropertyBag()),
      timeStamp_(kTimeStamp, getPropertyBag(), 0.0),
      send_(kSend, getPropertyBag()) {
    PropertyBag& bag = *getPropertyBag();
    bag.registerProperty(kMatrix, matrix_);
    bag.registerProperty(kTimeStamp, timeStamp_);
    bag.registerProperty(kSend, send_);
    matrix_.attach(*this, &FilterMatrixSource::onMatrix);
    send_.attach(*this, &FilterMatrixSource::onSend);
}

FilterMatrixSource::~FilterMatrixSource() = default;

void FilterMatrixSource::onMatrix(const std::string& text) {
    pin_.getValue() = parseMatrix(text);
}

// The host runs the call that sends, so that the filters behind it are called in their turn.
void FilterMatrixSource::onSend() {
    isSendDue_ = true;
}

bool FilterMatrixSource::isFinished() const {
    return !isSendDue_ || pin_.getSample().value.size() == 0;
}

void FilterMatrixSource::process() {
    if (isFinished()) return;
    isSendDue_ = false;
    pin_.push(timeStamp_.get());
}

}  // namespace Quoril::Core
