# Writes an MVRS route file of `meters` meters in 100 routes of one cycle:
# a customer, a meter and a reading line each, a transponder line for every
# fourth meter and a special message for every tenth.
#
#   awk -v meters=32767 -f bench/mvrs_route.awk > route.dat
BEGIN {
  routes = 100
  per = int((meters + routes - 1) / routes)
  printf "FHDYY02.10   01YYN\r\n"
  printf "CHD%02d%04d%-8s\r\n", 1, routes, "11202026"
  for (i = 0; i < meters; i++) {
    if (i % per == 0) {
      if (i > 0) printf "RTR%-8s\r\n", route
      route = sprintf("R%06d", int(i / per) + 1)
      n = meters - i < per ? meters - i : per
      printf "RHD%-8sNN%04d%04d%04d%04d%04d%04d%04d%04d%-6s%04d%04d%04d%04d%04d%-2s%-2s%-2s%02d%02d%04d%s\r\n",
        route, 0, n, 0, n, 0, 0, n, n, "013000", 0, n, 0, 0, 0, "NE", "01", "05", 11, 0, 0, "N"
    }
    printf "CUS%-8s%03d%-20s%-20s%-20s%-20s%-2s%-1s%-20s%-1s%-4s%-2s%-1s\r\n",
      route, 1, sprintf("AC%08d", i), sprintf("CUSTOMER %d", i), sprintf("%d MAIN ST", i % 997 + 1), "",
      "", "R", "", "N", "SEG1", "01", "P"
    printf "MTR%-8s%03d%-2s%-1s%-8s%-1s%-2s%-1s%-1s%-1s%-14s%-12s%-2s%02d%08d%-20s%-1s%-2s%-1s%02d%-1s%02d%01d%-1s%-1s%-1s%-1s%03d%-2s%-2s%-1s%-1s\r\n",
      route, 1, "", "A", "", "Y", "", "N", "B", "A", "", sprintf("SN%08d", i), "", 1, i % per + 1, "BASEMENT", "",
      "07", "", 1, "", 2, 0, "", (i % 10 == 0 ? "Y" : "N"), "W", "", 0, "A1", "B2", "C", "D"
    if (i % 10 == 0) printf "MTS%-8s%-12s%-100s\r\n", route, sprintf("SN%08d", i), "Dog in yard"
    printf "RDG%-8s%-4s%-1s%-1s%03d%03d%-1s%02d%02d%02d%-1s%010d%010d%010d%06d%01d%01d%05d%01d%-1s%02d%06d%06d%05d\r\n",
      route, "GAL", "K", "F", 5, 12, "", 1, 6, 0, (i % 4 == 0 ? "R" : "K"), i * 7 % 900000,
      i * 7 % 900000 + 5000, i * 7 % 900000 + 1, 1, 1, 2, 0, 0, "", 1, 150, 50, 0
    if (i % 4 == 0) printf "RFF%-8s%08d%-6s%-4s%07d%02d%-12s%-4s%-10s%02d%-1s%-1s\r\n",
      route, 30000000 + i, "", "", 0, 12, "952.000", "A1", "", 0, "N", "N"
  }
  printf "RTR%-8s\r\n", route
  printf "CTR%02d%04d%-8s\r\n", 1, routes, "11202026"
  printf "FTRYY02.10   01YYN\r\n"
}
