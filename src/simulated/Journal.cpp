#include "simulated/Journal.h"

#include <sstream>

namespace tarvix {

std::string numeral(double number) {
    std::ostringstream text;
    text << number;
    return text.str();
}

}  // namespace tarvix
