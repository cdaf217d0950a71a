# Relative changes since the first snapshot, from a scheibendiagnose table:
#   gnuplot -e "tabelle='diagnose.tsv'; bild='diagnose.png'" docs/bilder/diagnose.gp
# The dashed line adds back to the disc's angular momentum what the drained
# particles took along: each left on a near-circular orbit at the inner
# removal radius eta, with specific angular momentum (G m1 eta)^(1/2). The
# dotted line also adds back what the secondary's tidal torque took, its
# column T2 integrated over time by the trapezoidal rule.
if (!exists("tabelle")) tabelle = "diagnose.tsv"
if (!exists("bild")) bild = "diagnose.png"
G = 3.9371199385708905e-7; m1 = 0.685; eta = 0.05
set terminal pngcairo size 680,440 font "DejaVu Sans,10"
set output bild
set datafile separator "\t"
set key autotitle columnhead # the header line
# the first row: N, total and mean L_z, mean radius; the last: time, orbits
stats tabelle every ::0::0 using 3 name "N0" nooutput
stats tabelle every ::0::0 using 5 name "L0" nooutput
stats tabelle every ::0::0 using 6 name "l0" nooutput
stats tabelle every ::0::0 using 7 name "R0" nooutput
stats tabelle using 1 name "t" nooutput
stats tabelle using 2 name "b" nooutput
set xrange [t_min:t_max]
set x2range [b_min:b_max]
set xlabel "time [s]"
set x2label "binary orbits"
set ylabel "change since the first snapshot [%]"
set xtics nomirror
set x2tics
set grid
set offsets 0, 0, graph 0.45, 0 # room for the key
set key left top box opaque
plot tabelle using 1:(100*($3/N0_min-1)) with linespoints lw 2 pt 7 lc rgb "#7b2fbe" title "particles N", \
     "" using 1:(100*($5/L0_min-1)) with linespoints lw 2 pt 5 lc rgb "#009e73" title "total L_z about the primary", \
     "" using 1:(100*($5/L0_min-1 + $4*sqrt(G*m1*eta)/L0_min)) with linespoints lw 2 pt 4 dt 2 lc rgb "#56b4e9" \
        title "total L_z + lost × (G m_1 {/Symbol h})^{1/2}", \
     T = 0, tv = NaN, Tv = 0, \
     "" using 1:(T = tv == tv ? T + ($1 - tv) * ($12 + Tv) / 2 : 0, tv = $1, Tv = $12, \
                 100*($5/L0_min-1 + ($4*sqrt(G*m1*eta) - T)/L0_min)) \
        with linespoints lw 2 pt 6 dt 3 lc rgb "#e69f00" \
        title "the same – ∫ T_2 dt (tidal torque of the secondary)", \
     "" using 1:(100*($6/l0_min-1)) with linespoints lw 2 pt 9 lc rgb "#d55e00" title "mean specific L_z", \
     "" using 1:(100*($7/R0_min-1)) with linespoints lw 2 pt 13 lc rgb "#0072b2" title "mean radius"
