# Draws the plots of docs/accuracy.md:  gnuplot -c plots.gp DATA_FOLDER OUTPUT_FOLDER
# A line of a data file: coordinate, 5 %, median, 95 %, worst.
data_folder = ARG1
output_folder = ARG2

set encoding utf8
set terminal svg size 760,340 font 'sans-serif,13' background 'white'
set border 3 linecolor rgb '#808080'
set tics nomirror out textcolor rgb '#303030'
set grid linecolor rgb '#e4e4e4' linewidth 0.7
set key at graph 0, 1.14 left top horizontal samplen 2 width 1 textcolor rgb '#303030'
set tmargin 2.8
set rmargin 3

set style line 1 linewidth 2 linecolor rgb '#08519c'
set style line 2 linecolor rgb '#d95f02' pointtype 7 pointsize 0.35
set style line 3 linewidth 1.2 linecolor rgb '#606060' dashtype 2
set style fill noborder
band = '#b5d4ea'

data(name) = data_folder.'/'.name.'.dat'
picture(name) = output_folder.'/'.name.'.svg'

# ---- Errors in units of 10^-160 against magnitudes, both logarithmic ----

names = 'sin atan acos ln'
axes = '|x| |x| 1–|x| x'
firsts = '-130 -150 -160 -160'
lasts = '160 160 0 160'
steps = '40 40 20 40'
largest = '160 84 42 84'
error_steps = '40 20 10 20'
# Where the error is the last digit of a packed result of about 1.
packed = '120 NaN NaN NaN'

set format x '10^{%g}'
set format y '10^{%g}'
set ylabel 'error in 10^{–160}' textcolor rgb '#303030'
do for [i = 1:words(names)] {
    name = word(names, i)
    limit = real(word(packed, i))
    if (limit == limit) {
        set label 1 'last digit of a packed result' at graph 0.25, first limit center offset 0, 0.7 textcolor rgb '#606060'
    } else {
        unset label 1
    }
    set output picture(name)
    set xlabel word(axes, i) textcolor rgb '#303030'
    set xrange [real(word(firsts, i)):real(word(lasts, i))]
    set yrange [-2.2:real(word(largest, i))]
    set xtics real(word(steps, i))
    set ytics real(word(error_steps, i))
    plot data(name) using 1:(log10($2)):(log10($4)) with filledcurves fillcolor rgb band title '5 to 95 %', \
         '' using 1:(log10($3)) with lines linestyle 1 title 'median', \
         '' using 1:(log10($5)) with points linestyle 2 title 'largest', \
         limit with lines linestyle 3 notitle
}

# ---- Right digits ----

names = 'tan exp sinh cosh tanh pow'
axes = '|tan_x| x x x x |result|'
firsts = '-40 -369 -369 -369 -369 -160'
lasts = '144 369 369 369 369 160'
steps = '20 100 100 100 100 40'
is_logarithmic = '1 0 0 0 0 1'

set format y '%g'
set ylabel 'right digits' textcolor rgb '#303030'
set label 1 'a packed result has 40' at graph 0.5, first 40 center offset 0, 0.7 textcolor rgb '#606060'
set yrange [0:325]
set ytics 40
do for [i = 1:words(names)] {
    name = word(names, i)
    set output picture(name)
    axis = word(axes, i)
    set xlabel (axis eq '|tan_x|' ? '|tan x|' : axis) textcolor rgb '#303030'
    set format x (word(is_logarithmic, i) eq '1' ? '10^{%g}' : '%g')
    set xrange [real(word(firsts, i)):real(word(lasts, i))]
    set xtics real(word(steps, i))
    plot data(name) using 1:2:4 with filledcurves fillcolor rgb band title '5 to 95 %', \
         '' using 1:3 with lines linestyle 1 title 'median', \
         '' using 1:5 with points linestyle 2 title 'fewest', \
         40 with lines linestyle 3 notitle
}
