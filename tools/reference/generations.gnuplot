# SPDX-License-Identifier: GPL-3.0-or-later
# Draws the modelled throughput per clock by the year of the core: a row of panels for each test, a
# column for each vendor, with the families of the other vendors in grey for comparison.
#
# usage: gnuplot -c generations.gnuplot TABLE PICTURE
#   TABLE    what fennick-make-reference --generations prints
#   PICTURE  the PNG to write

array tests = ["rotozoom 'linear'", "mandel", "zlib uncompress"]
array units = ["MPixel/s", "MPixel/s", "MWords/s"]

array vendors = ["Intel", "AMD", "ARM"]
array firstFamilies = [1, 4, 8]
array lastFamilies = [3, 7, 13]
array firstYears = [2004, 2002, 2009]

array families = ["Intel Core", "Intel Rocket Lake", "Intel Atom", \
    "AMD Zen", "AMD K8, K10", "AMD Bulldozer line", "AMD Bobcat line", \
    "ARM Cortex-A, big", "ARM Cortex-A, small", "ARM Cortex-X", "ARM Neoverse", \
    "Qualcomm Krait, Kryo", "Samsung Exynos M"]
array colours = [0x1565C0, 0x7B1FA2, 0x00897B, \
    0xB71C1C, 0xD9730D, 0x8D5524, 0xAD1457, \
    0x1B5E20, 0x43A047, 0x7B1FA2, 0x1565C0, 0x616161, 0xAD1457]
# Whether a family's names stand above its line.
array above = [1, 0, 0,  1, 1, 1, 0,  1, 0, 1, 0, 0, 0]
isAbove(f) = above[f] && strcol(3) ne "Cortex-A710" # Cortex-X is above that one
# Cores of one family and year stand half a year apart; some families are moved to the right, so that
# their names do not cover others.
array moved = [0, 0.5, 0,  0, 0, 0, 0,  0, 0, 0.25, 0.5, 0, 0.5]

lastYear = 0
beside = 0
place(year) = (beside = (year == lastYear ? beside + 0.5 : 0), lastYear = year, year + beside)
x(t, f) = strcol(1) eq tests[t] && strcol(2) eq families[f] ? place(column(4)) + moved[f] : NaN
y(t) = strcol(1) eq tests[t] ? column(5) : NaN

set terminal pngcairo size 1800,1950 font "DejaVu Sans,11"
set output ARG2
set datafile separator tab
set grid linecolor rgb "#E8E8E8"
set key top left reverse Left
set multiplot layout 3,3 margins 0.03,0.99,0.025,0.945 spacing 0.03,0.055 \
    title "Modelled, not measured: throughput of one core per clock, by the year of its first products\n" \
        . "(grey: the other vendors; cores of one family and year stand side by side)" font ",14"
do for [t = 1:|tests|] {
    set autoscale
    stats ARG1 using (y(t)) skip 1 nooutput
    set yrange [0:STATS_max * 1.25]
    do for [v = 1:|vendors|] {
        set xrange [firstYears[v]:2025]
        set title sprintf("%s on %s cores at 1 GHz: %s", tests[t], vendors[v], units[t]) noenhanced
        plot for [f = 1:|families|] ARG1 using (x(t, f)):5 skip 1 \
                with lines linecolor rgb "#D8D8D8" linewidth 2 notitle, \
            for [f = firstFamilies[v]:lastFamilies[v]] ARG1 using (x(t, f)):5 skip 1 \
                with linespoints linecolor rgb colours[f] linewidth 2 pointtype 7 pointsize 0.9 \
                title families[f], \
            for [f = firstFamilies[v]:lastFamilies[v]] ARG1 using (x(t, f)):(isAbove(f) ? $5 : NaN):3 skip 1 \
                with labels noenhanced right rotate by -65 offset -0.3,0.6 textcolor rgb colours[f] notitle, \
            for [f = firstFamilies[v]:lastFamilies[v]] ARG1 using (x(t, f)):(isAbove(f) ? NaN : $5):3 skip 1 \
                with labels noenhanced left rotate by -65 offset 0.3,-0.6 textcolor rgb colours[f] notitle
    }
}
unset multiplot
