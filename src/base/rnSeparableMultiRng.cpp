#include <base/rnSeparableMultiRng.imp>

namespace Kr
{

template class RnSeparableMultiRng<float, 3>;
template class RnSeparableMultiRng<double, 3>;

} // namespace Kr
