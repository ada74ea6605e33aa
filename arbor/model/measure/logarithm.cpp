#include "arbor/model/measure/logarithm.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "arbor/model/weight_type.h"

namespace arbor::impls {

namespace {

// x = 2^k z with z from 0.6875 to before 1.375, and z r = 1 + q for the entry of z, which the first
// eight bits of z less 0.6875 choose:
//
//   log2 x = k + table + q b1 + q^2 b2 + ...      scaled by ln 2 / Log2, as Log2 is rounded
//
// r has 24 bits, so z r - 1 is exact if x is a float; |q| < 2^-8. The table's logarithms are
// multiples of 2^-45, so their sum with k is exact; each r is chosen near the middle of its
// interval so that the multiple is within 2^-55 of the logarithm. S. Gal and B. Bachelis, "An
// accurate elementary mathematical library for the IEEE floating point standard", ACM Transactions
// on Mathematical Software 17 (1991), 26-45. Around 1, where the logarithm vanishes, r is 1.
struct entry {
  double r;
  double logarithm;  // -ln r / Log2
};
// clang-format off
constexpr std::array<entry, 256> table{{
    {0x1.73c3acp+0,-0x1.1394cb996fep-1}, {0x1.72c114p+0,-0x1.11924b91eddp-1},
    {0x1.71c3e6p+0,-0x1.0f993503513p-1}, {0x1.70a92ep+0,-0x1.0d639714406p-1},
    {0x1.6f934p+0,-0x1.0b35e68064bp-1}, {0x1.6e8d74p+0,-0x1.092712ec48bp-1},
    {0x1.6da2cep+0,-0x1.074da104a0fp-1}, {0x1.6c9988p+0,-0x1.0534f612ff9p-1},
    {0x1.6b93fap+0,-0x1.03225244d21p-1}, {0x1.6a9564p+0,-0x1.011c62b662cp-1},
    {0x1.699ceap+0,-0x1.fe4303b2ab8p-2}, {0x1.68a6e6p+0,-0x1.fa549d1e226p-2},
    {0x1.679d34p+0,-0x1.f612b0de91ap-2}, {0x1.6696b8p+0,-0x1.f1dad8bb522p-2},
    {0x1.6592c4p+0,-0x1.edaa5e48404p-2}, {0x1.64b182p+0,-0x1.ea0690ad3p-2},
    {0x1.63c536p+0,-0x1.e6329fc5ddap-2}, {0x1.62b9fcp+0,-0x1.e1db58e64f8p-2},
    {0x1.61b5e2p+0,-0x1.dd9e8e1d60ep-2}, {0x1.60c4bap+0,-0x1.d9adfd6202p-2},
    {0x1.5fd8f4p+0,-0x1.d5d15450356p-2}, {0x1.5ee78ep+0,-0x1.d1da659d27p-2},
    {0x1.5df454p+0,-0x1.cdd90425206p-2}, {0x1.5d0b56p+0,-0x1.ca002ac0552p-2},
    {0x1.5c2efp+0,-0x1.c65a2f4a35ep-2}, {0x1.5b3d02p+0,-0x1.c2564c03efcp-2},
    {0x1.5a58p+0,-0x1.be86bad1e44p-2}, {0x1.596472p+0,-0x1.ba766caa812p-2},
    {0x1.5877ccp+0,-0x1.b680dea4988p-2}, {0x1.57a65p+0,-0x1.b2fd62a057ap-2},
    {0x1.56b4f6p+0,-0x1.aeee6905c94p-2}, {0x1.55b286p+0,-0x1.aa92b5ae7c4p-2},
    {0x1.54e8fcp+0,-0x1.a72a5afd0a2p-2}, {0x1.541118p+0,-0x1.a381a4b003ap-2},
    {0x1.5327cap+0,-0x1.9f8ac26ba0ep-2}, {0x1.5231fp+0,-0x1.9b5a5748178p-2},
    {0x1.517154p+0,-0x1.981009cbe84p-2}, {0x1.5083c4p+0,-0x1.93fe8f5cf68p-2},
    {0x1.4faffap+0,-0x1.905ba609c26p-2}, {0x1.4ec05ep+0,-0x1.8c3baf11854p-2},
    {0x1.4deff4p+0,-0x1.88a2cb4185ep-2}, {0x1.4d068ap+0,-0x1.8498c569654p-2},
    {0x1.4c2b7ep+0,-0x1.80cbd10f388p-2}, {0x1.4b721ep+0,-0x1.7d9276f39d4p-2},
    {0x1.4a9eccp+0,-0x1.79e364a4c96p-2}, {0x1.49ac6p+0,-0x1.75a69e5d33cp-2},
    {0x1.48ea7ep+0,-0x1.7240cc7cab4p-2}, {0x1.48254p+0,-0x1.6ec9d9a116ep-2},
    {0x1.4754bp+0,-0x1.6b1dba8df74p-2}, {0x1.46682ep+0,-0x1.66f0ce17ab4p-2},
    {0x1.4592aap+0,-0x1.63293202e76p-2}, {0x1.44c35ep+0,-0x1.5f7b64af554p-2},
    {0x1.441b38p+0,-0x1.5c7db9d7b52p-2}, {0x1.434ac8p+0,-0x1.58c671d901p-2},
    {0x1.426176p+0,-0x1.549ac16e00ep-2}, {0x1.41ae6ap+0,-0x1.5165605822ep-2},
    {0x1.40f072p+0,-0x1.4dfbf0224a6p-2}, {0x1.401f4cp+0,-0x1.4a37fa01c34p-2},
    {0x1.3f5c96p+0,-0x1.46b457f0438p-2}, {0x1.3e8ed2p+0,-0x1.42fb4d6b0fep-2},
    {0x1.3dd334p+0,-0x1.3f94388cb3cp-2}, {0x1.3cedap+0,-0x1.3b679561744p-2},
    {0x1.3c4962p+0,-0x1.386936c5626p-2}, {0x1.3b8002p+0,-0x1.34bb7474776p-2},
    {0x1.3ab138p+0,-0x1.30f1edf1be8p-2}, {0x1.3a0414p+0,-0x1.2dc43f715e4p-2},
    {0x1.39371ap+0,-0x1.29feaeed048p-2}, {0x1.386272p+0,-0x1.2612549b06ep-2},
    {0x1.37af2cp+0,-0x1.22c1906dc6cp-2}, {0x1.370784p+0,-0x1.1fa61260454p-2},
    {0x1.363332p+0,-0x1.1bb4403ce9cp-2}, {0x1.358284p+0,-0x1.1869e180b5cp-2},
    {0x1.34ccc2p+0,-0x1.15055648d34p-2}, {0x1.340d36p+0,-0x1.116fda01a6ap-2},
    {0x1.3361ap+0,-0x1.0e38151041p-2}, {0x1.329c5cp+0,-0x1.0a82cdf1b94p-2},
    {0x1.31d06cp+0,-0x1.06aae8b348p-2}, {0x1.312e2ep+0,-0x1.039a570d274p-2},
    {0x1.307f44p+0,-0x1.004aaa54af2p-2}, {0x1.2fd0b4p+0,-0x1.f9f59784de4p-3},
    {0x1.2f1832p+0,-0x1.f2f119860d8p-3}, {0x1.2e5088p+0,-0x1.eb54378f8e4p-3},
    {0x1.2d9e22p+0,-0x1.e482a56c67cp-3}, {0x1.2d0272p+0,-0x1.de8bfee96fcp-3},
    {0x1.2c4d26p+0,-0x1.d79654ced8cp-3}, {0x1.2b9eecp+0,-0x1.d0e22f85a98p-3},
    {0x1.2adc42p+0,-0x1.c9601caf0ep-3}, {0x1.2a4c9p+0,-0x1.c3d22752f34p-3},
    {0x1.297c56p+0,-0x1.bbc0dc8831cp-3}, {0x1.28db7ep+0,-0x1.b581aa6b494p-3},
    {0x1.283a1ep+0,-0x1.af39c86ab8p-3}, {0x1.2793e8p+0,-0x1.a8be22b86bcp-3},
    {0x1.26e39p+0,-0x1.a1d951e5858p-3}, {0x1.2640cap+0,-0x1.9b78a69355cp-3},
    {0x1.258fb6p+0,-0x1.94847d4c538p-3}, {0x1.24dbbcp+0,-0x1.8d6ee31380cp-3},
    {0x1.244c18p+0,-0x1.87c44f8ffe4p-3}, {0x1.23a306p+0,-0x1.81155b72ae4p-3},
    {0x1.22fefp+0,-0x1.7a9522acf8p-3}, {0x1.2246fap+0,-0x1.7346f83fac4p-3},
    {0x1.21aee4p+0,-0x1.6d39596923p-3}, {0x1.2110cap+0,-0x1.66eb0ff0c24p-3},
    {0x1.206e9ep+0,-0x1.606fa0ddc84p-3}, {0x1.1fbe8ap+0,-0x1.5961c41c78p-3},
    {0x1.1f2342p+0,-0x1.53259c8be64p-3}, {0x1.1e7232p+0,-0x1.4c0571fe33cp-3},
    {0x1.1de532p+0,-0x1.4655a7df0acp-3}, {0x1.1d2df6p+0,-0x1.3eed9c5865p-3},
    {0x1.1cb06ap+0,-0x1.39d7bf12c84p-3}, {0x1.1c0f9ep+0,-0x1.3351137718p-3},
    {0x1.1b682cp+0,-0x1.2c8165d4b1cp-3}, {0x1.1ac7e6p+0,-0x1.25f8a1354b8p-3},
    {0x1.1a2ddep+0,-0x1.1fad847f7a8p-3}, {0x1.199bb2p+0,-0x1.19b16e806f8p-3},
    {0x1.18f5f2p+0,-0x1.12e4606ca64p-3}, {0x1.186d36p+0,-0x1.0d4514fc694p-3},
    {0x1.17b6d4p+0,-0x1.05c1026b444p-3}, {0x1.1725e6p+0,-0x1.ff891cc1dcp-4},
    {0x1.16a58p+0,-0x1.f4e89a93aap-4}, {0x1.15fc1ep+0,-0x1.e6dc3791b1p-4},
    {0x1.15612cp+0,-0x1.d9faddf705p-4}, {0x1.14e108p+0,-0x1.cf4e80138p-4},
    {0x1.143296p+0,-0x1.c0bed1d56ap-4}, {0x1.1397a8p+0,-0x1.b3c871d2c28p-4},
    {0x1.1308a2p+0,-0x1.a7ca9c13978p-4}, {0x1.12898cp+0,-0x1.9d1d9e4211p-4},
    {0x1.11f6cp+0,-0x1.90c2957ae48p-4}, {0x1.116acep+0,-0x1.84f502969ep-4},
    {0x1.10bd44p+0,-0x1.7649b55f648p-4}, {0x1.103bccp+0,-0x1.6b51fba1b08p-4},
    {0x1.0fb26ep+0,-0x1.5fa9425211p-4}, {0x1.0f0e8ep+0,-0x1.51b8d9ed4ap-4},
    {0x1.0e8096p+0,-0x1.459ea2fbca8p-4}, {0x1.0dec54p+0,-0x1.38f463158ap-4},
    {0x1.0d723cp+0,-0x1.2e8117791p-4}, {0x1.0cd674p+0,-0x1.2124c22454p-4},
    {0x1.0c5092p+0,-0x1.15a30911d2p-4}, {0x1.0bc17ep+0,-0x1.0950a43b16p-4},
    {0x1.0b2fe4p+0,-0x1.f97fb1ed8bp-5}, {0x1.0aa922p+0,-0x1.e2310971cfp-5},
    {0x1.0a1b78p+0,-0x1.c9a3e0f18ep-5}, {0x1.09a2d8p+0,-0x1.b4b1d77c21p-5},
    {0x1.091446p+0,-0x1.9be402e433p-5}, {0x1.0880aep+0,-0x1.8228605819p-5},
    {0x1.080178p+0,-0x1.6beef79721p-5}, {0x1.076e36p+0,-0x1.522796c32bp-5},
    {0x1.06ebacp+0,-0x1.3b41674069p-5}, {0x1.0675ccp+0,-0x1.268a271a3cp-5},
    {0x1.05d494p+0,-0x1.0a25c340d9p-5}, {0x1.055cc6p+0,-0x1.ea024ea85p-6},
    {0x1.04cd24p+0,-0x1.b73677b60cp-6}, {0x1.04476cp+0,-0x1.87d307cbb4p-6},
    {0x1.03d4dcp+0,-0x1.5f2622d65cp-6}, {0x1.03434p+0,-0x1.2b5964dfe4p-6},
    {0x1.02d7b8p+0,-0x1.0505c3724p-6}, {0x1.0248acp+0,-0x1.a3e1a488d8p-7},
    {0x1.01babcp+0,-0x1.3e4a9ae3ccp-7}, {0x1.0148d2p+0,-0x1.d9338898c8p-8},
    {0x1.00c0f8p+0,-0x1.15fc6a5a5p-8}, {0x1p+0,0x0p+0},
    {0x1p+0,0x0p+0}, {0x1.fcec7ep-1,0x1.1ce3ddbd34p-7},
    {0x1.fb0c9cp-1,0x1.cb56c2b6c8p-7}, {0x1.f90a96p-1,0x1.43752e8bfap-6},
    {0x1.f7293cp-1,0x1.9b9f99dc8cp-6}, {0x1.f52708p-1,0x1.fa2bc8fa6cp-6},
    {0x1.f37028p-1,0x1.259584d4c9p-5}, {0x1.f18348p-1,0x1.533b4eb5ebp-5},
    {0x1.ef6f98p-1,0x1.84ac219d54p-5}, {0x1.edbddep-1,0x1.ad285a23efp-5},
    {0x1.ebe4bap-1,0x1.d97b09d8e9p-5}, {0x1.ea0d16p-1,0x1.02ea21a01e8p-4},
    {0x1.e836b8p-1,0x1.191cb6187d8p-4}, {0x1.e66f72p-1,0x1.2ead588ab3p-4},
    {0x1.e4a5cep-1,0x1.446f1048eap-4}, {0x1.e2a896p-1,0x1.5cbcb66a46p-4},
    {0x1.e105acp-1,0x1.70ce451608p-4}, {0x1.df499ep-1,0x1.862744d44fp-4},
    {0x1.dd8124p-1,0x1.9c2dcc99438p-4}, {0x1.dbb54ap-1,0x1.b27359350ep-4},
    {0x1.da11a6p-1,0x1.c6d92793acp-4}, {0x1.d84af4p-1,0x1.dd0795bd608p-4},
    {0x1.d6aee8p-1,0x1.f133e0c5bp-4}, {0x1.d50942p-1,0x1.02f56984a8p-3},
    {0x1.d33d18p-1,0x1.0e4dbb49fa4p-3}, {0x1.d1b884p-1,0x1.17eaf3a79ep-3},
    {0x1.d014f8p-1,0x1.22555902668p-3}, {0x1.ce537cp-1,0x1.2d887a24df8p-3},
    {0x1.ccd14ep-1,0x1.373083a4b0cp-3}, {0x1.cb236p-1,0x1.41fa24db44p-3},
    {0x1.c99492p-1,0x1.4c04e3cbf14p-3}, {0x1.c7ff2cp-1,0x1.5643203760cp-3},
    {0x1.c6484ap-1,0x1.61643bfa6d8p-3}, {0x1.c4c502p-1,0x1.6b3f4dc10c8p-3},
    {0x1.c33cfcp-1,0x1.7541de3454cp-3}, {0x1.c1abe6p-1,0x1.7f88b010c04p-3},
    {0x1.c0214cp-1,0x1.89adef77ebcp-3}, {0x1.beac1p-1,0x1.934ec794178p-3},
    {0x1.bd01d4p-1,0x1.9e577ee2d54p-3}, {0x1.bb8f2p-1,0x1.a7f8cdecf54p-3},
    {0x1.b9f91ap-1,0x1.b28e421026p-3}, {0x1.b87f4cp-1,0x1.bc7026a375cp-3},
    {0x1.b71324p-1,0x1.c5feaf4ccfp-3}, {0x1.b595e4p-1,0x1.d0089176508p-3},
    {0x1.b44762p-1,0x1.d8de9765ff4p-3}, {0x1.b2b4a8p-1,0x1.e38aee86174p-3},
    {0x1.b14fcp-1,0x1.ed08ad367fp-3}, {0x1.aff646p-1,0x1.f640116f9ccp-3},
    {0x1.ae698cp-1,0x1.006f4997858p-2}, {0x1.ad0452p-1,0x1.053b66a9d56p-2},
    {0x1.abaf24p-1,0x1.09d414fcd2cp-2}, {0x1.aa2694p-1,0x1.0f22852cea6p-2},
    {0x1.a8e5ccp-1,0x1.137c32af2dcp-2}, {0x1.a790acp-1,0x1.18201d17992p-2},
    {0x1.a62c56p-1,0x1.1cfcff1d76ep-2}, {0x1.a4acdp-1,0x1.223d748c944p-2},
    {0x1.a376fap-1,0x1.267f19a9af4p-2}, {0x1.a21c6p-1,0x1.2b45c6b5142p-2},
    {0x1.a0b042p-1,0x1.304e83252bp-2}, {0x1.9f6e26p-1,0x1.34c63d96b9ap-2},
    {0x1.9e29eap-1,0x1.3949049bf2cp-2}, {0x1.9cd874p-1,0x1.3dfea8b32cep-2},
    {0x1.9b8d12p-1,0x1.42a25638ffap-2}, {0x1.9a49acp-1,0x1.472d017bdep-2},
    {0x1.990b24p-1,0x1.4ba9ae63964p-2}, {0x1.97c412p-1,0x1.5048ca9feb2p-2},
    {0x1.9670aap-1,0x1.551873470ccp-2}, {0x1.95296p-1,0x1.59bff2d0204p-2},
    {0x1.93ee5ap-1,0x1.5e3e599522cp-2}, {0x1.929d9ep-1,0x1.630feac3268p-2},
    {0x1.915aep-1,0x1.67b203b696p-2}, {0x1.90397p-1,0x1.6bdce36944cp-2},
    {0x1.8efc48p-1,0x1.7071667aadp-2}, {0x1.8dd998p-1,0x1.74a742ba41p-2},
    {0x1.8c81aep-1,0x1.79a6769ddf2p-2}, {0x1.8b5efep-1,0x1.7de3126fdfcp-2},
    {0x1.8a3f32p-1,0x1.8217f7e003ap-2}, {0x1.891b6cp-1,0x1.865ee230b02p-2},
    {0x1.87f02ap-1,0x1.8ac53001754p-2}, {0x1.86a838p-1,0x1.8f9b535e59cp-2},
    {0x1.85892ep-1,0x1.93da5c7ac7cp-2}, {0x1.8452e8p-1,0x1.9874e9620b6p-2},
    {0x1.834c4ep-1,0x1.9c5d42fb97ep-2}, {0x1.821f18p-1,0x1.a0dbf50abdcp-2},
    {0x1.80dbc8p-1,0x1.a5b2fe83242p-2}, {0x1.7fc9c8p-1,0x1.a9d03cb378ap-2},
    {0x1.7ec6aep-1,0x1.adb6eaae9c2p-2}, {0x1.7d90f4p-1,0x1.b2643221bc2p-2},
    {0x1.7c882p-1,0x1.b666ee1b90ep-2}, {0x1.7b5be4p-1,0x1.baf650ae63p-2},
    {0x1.7a3a6p-1,0x1.bf5f7235d4p-2}, {0x1.792e2cp-1,0x1.c3787934894p-2},
    {0x1.780a14p-1,0x1.c7f243b28f6p-2}, {0x1.7706e6p-1,0x1.cbeddbdb7e8p-2},
    {0x1.75e39ap-1,0x1.d06b1720e2p-2}, {0x1.74f952p-1,0x1.d409ec4746cp-2},
}};
// clang-format on

// Every function that takes or returns four numbers is inlined, so it does not matter how they
// would be passed.
#pragma GCC diagnostic ignored "-Wpsabi"

using four_floats = float __attribute__((vector_size(16)));
using two_numbers = double __attribute__((vector_size(16)));
using four_numbers = double __attribute__((vector_size(32)));
using four_patterns = std::uint64_t __attribute__((vector_size(32)));

template <class To, class From>
[[gnu::always_inline]] inline To same_bits(const From& from) {
  static_assert(sizeof(To) == sizeof(From));
  To to;
  std::memcpy(&to, &from, sizeof to);
  return to;
}

// The entries at these places, of which the lowest eight bits count.
template <class Number>
struct entries {
  Number r;
  Number logarithm;
};
[[gnu::always_inline]] inline entries<double> look_up(std::uint64_t place) {
  const entry& e = table[place & 0xFFU];
  return {e.r, e.logarithm};
}
[[gnu::always_inline]] inline entries<four_numbers> look_up(const four_patterns& places) {
  const auto pair = [&](int i) { return same_bits<two_numbers>(table[places[i] & 0xFFU]); };
  const auto even = __builtin_shufflevector(pair(0), pair(2), 0, 1, 2, 3);
  const auto odd = __builtin_shufflevector(pair(1), pair(3), 0, 1, 2, 3);
  return {__builtin_shufflevector(even, odd, 0, 4, 2, 6),
          __builtin_shufflevector(even, odd, 1, 5, 3, 7)};
}

// The natural logarithm of a number, or of each of four, divided by Log2. Nothing branches on it.
template <class Pattern, class Number>
[[gnu::always_inline]] inline Number logarithm_of(const Number& x) {
  constexpr unsigned int fraction_bits = 52;
  constexpr std::uint64_t least_fraction = 0x6ULL << 48U;  // that of 0.6875
  constexpr std::uint64_t exponent_of_half = 1022;
  constexpr std::uint64_t exponents = 0xFFFULL << fraction_bits;
  constexpr std::uint64_t two_to_52 = 0x433ULL << fraction_bits;  // as a double
  constexpr double b1 = 0x1.71547641b167ep+0;                     // 1 / Log2
  constexpr double b2 = -0x1.71547641b167ep-1;                    // -1 / (2 Log2) and so on
  constexpr double b3 = 0x1.ec709dacec8a9p-2;
  constexpr double b4 = -0x1.71547641b167ep-2;
  constexpr double b5 = 0x1.2776c5015ab98p-2;
  constexpr double b6 = -0x1.ec709dacec8a9p-3;
  constexpr double log2_of_2_less_1 = -0x1.79a8dc1dep-29;  // ln 2 / Log2 - 1

  const auto bits = same_bits<Pattern>(x);
  const Pattern shifted = bits - least_fraction;
  const entries<Number> at = look_up(shifted >> (fraction_bits - 8));
  // A whole number below 2^52 in the lowest bits of that double is added to it.
  const Number k = same_bits<Number>((shifted >> fraction_bits) | two_to_52) -
                   (0x1p52 + static_cast<double>(exponent_of_half));
  const auto z =
      same_bits<Number>(bits + (exponent_of_half << fraction_bits) - (shifted & exponents));
  const Number q = z * at.r - 1.0;
  const Number powers = q * (b1 + q * (b2 + q * (b3 + q * (b4 + q * (b5 + q * b6)))));
  return (k + at.logarithm) + (k * log2_of_2_less_1 + powers);
}

constexpr std::size_t at_once = 4;

[[gnu::always_inline]] inline void four_terms(const float* weights, double* terms) {
  four_floats four;
  std::memcpy(&four, weights, sizeof four);
  // The logarithm that 0 gets is positive, and 0 times that is 0.
  four = four > four_floats{} ? four : four_floats{};
  const auto x = __builtin_convertvector(four, four_numbers);
  const auto logarithms = __builtin_convertvector(logarithm_of<four_patterns>(x), four_floats);
  const four_numbers result = x * __builtin_convertvector(logarithms, four_numbers);
  std::memcpy(terms, &result, sizeof result);
}

// `count` is at least four.
[[gnu::always_inline]] inline void terms_by_fours(const float* weights, std::size_t count,
                                                  double* terms) {
  for (std::size_t i = 0; i + at_once < count; i += at_once) four_terms(weights + i, terms + i);
  // The last four; some of them may be done again.
  four_terms(weights + count - at_once, terms + count - at_once);
}

#if defined(__x86_64__) || defined(__i386__)
// The same operations on the same numbers, two instructions at a time in one.
[[gnu::target("avx2")]] void terms_by_wide_fours(const float* weights, std::size_t count,
                                                 double* terms) {
  terms_by_fours(weights, count, terms);
}
bool has_wide_registers() {
  return __builtin_cpu_supports("avx2") != 0;
}
#endif

}  // namespace

float binary_log(double x) {
  return static_cast<float>(logarithm_of<std::uint64_t>(x));
}

double log_term(float x) {
  if (!(x > 0)) return 0;
  return static_cast<double>(x) * static_cast<double>(binary_log(static_cast<double>(x)));
}

void log_terms(const float* weights, std::size_t count, double* terms) {
  if (count < at_once) {
    for (std::size_t i = 0; i < count; ++i) terms[i] = log_term(weights[i]);
    return;
  }
#if defined(__x86_64__) || defined(__i386__)
  static const bool wide = has_wide_registers();
  if (wide) return terms_by_wide_fours(weights, count, terms);
#endif
  terms_by_fours(weights, count, terms);
}

}  // namespace arbor::impls
