#include "app/overlay/Notices.h"

#include <utility>

namespace lumnara {

void Notices::show(Notice notice) {
    if (listened_)
        shown_.emit(notice);
    else
        waiting_.push_back(std::move(notice));
}

async::Subscription Notices::subscribe(std::function<void(const Notice&)> onNotice) {
    listened_ = true;
    for (const Notice& notice : std::exchange(waiting_, {})) onNotice(notice);
    return shown_.subscribe(std::move(onNotice));
}

} // namespace lumnara
