// A Mac's options of TCP in place of those of the system at hand, which go by other numbers or are not there at all.
#pragma once
#pragma GCC system_header  // as only those may go on to the next header of the same name

#include_next <netinet/tcp.h>
#include <stdint.h>

#undef TCP_INFO
#undef TCP_KEEPCNT
#undef TCP_KEEPIDLE
#undef TCP_KEEPINTVL
#undef TCP_USER_TIMEOUT
#define TCP_KEEPALIVE 0x10
#define TCP_RXT_CONNDROPTIME 0x80
#define TCP_KEEPINTVL 0x101
#define TCP_KEEPCNT 0x102
#define TCP_CONNECTION_INFO 0x106

struct tcp_connection_info {
  uint8_t tcpi_state;
  uint8_t tcpi_snd_wscale;
  uint8_t tcpi_rcv_wscale;
  uint8_t unnamed;
  uint32_t tcpi_options;
  uint32_t tcpi_flags;
  uint32_t tcpi_rto;
  uint32_t tcpi_maxseg;
  uint32_t tcpi_snd_ssthresh;
  uint32_t tcpi_snd_cwnd;
  uint32_t tcpi_snd_wnd;
  uint32_t tcpi_snd_sbbytes;
  uint32_t tcpi_rcv_wnd;
  uint32_t tcpi_rttcur;
  uint32_t tcpi_srtt;
  uint32_t tcpi_rttvar;
  uint32_t flagsOfFastOpen;
  uint64_t countsOfTraffic[7];
};
static_assert(sizeof(struct tcp_connection_info) == 112, "as the system has it");
