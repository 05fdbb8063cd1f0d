#include <base/rnAsymmetricalSeparableBiRng.imp>

namespace Kr
{

template class RnAsymmetricalSeparableBiRng<float>;
template class RnAsymmetricalSeparableBiRng<double>;

} // namespace Kr
