#include <base/rnSeparableBiRng.imp>

namespace Kr
{

template class RnSeparableBiRng<float>;
template class RnSeparableBiRng<double>;

} // namespace Kr
