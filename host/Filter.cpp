#include "framework/Filter.hpp"

#include "framework/AbstractInputPin.hpp"
#include "framework/AbstractOutputPin.hpp"
#include "host/LayoutManager.hpp"
#include "host/SynchronizerLock.hpp"
#include "host/Topology.hpp"

#include <memory>

namespace Quoril::Core {

Filter::Filter(const std::string& name, bool isScheduled)
    : PinManager(name), isScheduled_(isScheduled) {}
Filter::~Filter() = default;

void Filter::setManager(LayoutManager* manager) {
    storeManager(manager);
    getSynchronizer()->setLock(manager == nullptr ? std::make_shared<Synchronizer::Lock>()
                                                  : manager->getSynchronizer().getLock());
    // On either side of a connection the move may change which threads meet at the buffer.
    for (AbstractOutputPin* output : getOutputPins())
        output->managerChanged();
    for (AbstractInputPin* input : getInputPins()) {
        const AbstractOutputPin* writer = input->getOutputPin();
        if (writer == nullptr) continue;
        const Synchronizer::DisablerLocker lock(writer->getSynchronizer(), getSynchronizer());
        input->rebuildBufferStrategy();
    }
    Topology::markChanged();
}

Synchronizer* Filter::getPropertySynchronizer() {
    return getSynchronizer();
}

}  // namespace Quoril::Core
