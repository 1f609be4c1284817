// The blocks of PEM texts.
#pragma once

#include <functional>
#include <string_view>

#include "standin/base/bytes.h"

namespace standin {

/// Calls `take` with the label and the content of every block, as far as the first that is damaged.
void ForEachPemBlock(ByteView text, const std::function<void(std::string_view, ByteView)>& take);

}  // namespace standin
