#ifndef DERVIEW_NEAREST_H
#define DERVIEW_NEAREST_H

#include <string>
#include <vector>

namespace derview {

/// What a word may have been meant to be.
/// @return ", did you mean 'X'?" with the nearest of the words; nothing when none is near
std::string didYouMean(const std::string& word, const std::vector<std::string>& words);

} // namespace derview

#endif
